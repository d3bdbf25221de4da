#pragma once

#include <QStringView>

#include <array>

/// The screens of the main window, in the order of the sidebar and of the Go menu.
enum class Screen { finder, forms, templates, documents, profile, lastChecked, legalAid, settings };

namespace Screens {
struct Info
{
    Screen screen;
    QStringView id;
    QStringView title;
    QStringView symbol; ///< name of the symbol image
};

extern const std::array<Info, 8> all;

[[nodiscard]] const Info &info(Screen screen);
} // namespace Screens
