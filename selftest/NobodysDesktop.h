#pragma once

#include "QSDesktop.h"

/// For a model that runs without anybody to answer it: every panel counts as cancelled.
class NobodysDesktop final : public QSDesktop
{
public:
    std::optional<QString> chooseSavePath(const QString &) override { return std::nullopt; }
    std::optional<QString> chooseOpenPath(const QString &, const QString &) override
    {
        return std::nullopt;
    }
    int ask(const Question &question) override { return question.cancel; }
    bool openInBrowser(const QUrl &) override { return false; }
    std::optional<QString> print(const QSRendered &) override { return std::nullopt; }
    std::optional<QString> printPDF(const QSPDFDocument &, const QString &) override
    {
        return std::nullopt;
    }
    bool showInFolder(const QString &) override { return false; }
    bool openFile(const QString &) override { return false; }
};
