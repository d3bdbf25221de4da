#include "Screen.h"

namespace Screens {
const std::array<Info, 8> all = {{
    {Screen::finder, u"finder", u"What do you need?", u"sparkle.magnifyingglass"},
    {Screen::forms, u"forms", u"Official Forms", u"building.columns.fill"},
    {Screen::templates, u"templates", u"Vell Templates", u"doc.text.fill"},
    {Screen::documents, u"documents", u"My Documents", u"folder.fill"},
    {Screen::profile, u"profile", u"My Profile", u"person.crop.circle.fill"},
    {Screen::lastChecked, u"lastChecked", u"Forms Last Checked", u"checkmark.shield.fill"},
    {Screen::legalAid, u"legalAid", u"Legal Aid & Help", u"person.2.wave.2.fill"},
    {Screen::settings, u"settings", u"Backup & Settings", u"externaldrive.fill"},
}};

const Info &info(Screen screen)
{
    return all.at(static_cast<std::size_t>(screen));
}
} // namespace Screens
