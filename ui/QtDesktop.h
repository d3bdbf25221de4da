#pragma once

#include "QSDesktop.h"

class QWidget;

/// The model's port to the real desktop: Qt's panels over the window in use. Main thread only.
class QtDesktop final : public QSDesktop
{
public:
    /// The window that panels belong to while no other of the program's is in use; it has to
    /// outlive its use here.
    void setWindow(QWidget *window) { m_window = window; }

    [[nodiscard]] std::optional<QString> chooseSavePath(const QString &suggestedName) override;
    [[nodiscard]] std::optional<QString> chooseOpenPath(const QString &kind,
                                                        const QString &extension) override;
    [[nodiscard]] int ask(const Question &question) override;
    [[nodiscard]] bool openInBrowser(const QUrl &url) override;
    [[nodiscard]] std::optional<QString> print(const QSRendered &rendered) override;
    [[nodiscard]] std::optional<QString> printPDF(const QSPDFDocument &document,
                                                  const QString &title) override;
    [[nodiscard]] bool showInFolder(const QString &path) override;
    [[nodiscard]] bool openFile(const QString &path) override;

private:
    [[nodiscard]] QWidget *window() const;
    /// Asks whether a file may be replaced; true when it is not there.
    [[nodiscard]] bool mayWrite(const QString &path);

    QWidget *m_window = nullptr;
    QString m_lastFolder; ///< where the user saved last, for this run
};
