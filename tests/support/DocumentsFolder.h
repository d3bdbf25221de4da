#pragma once

#include "TestFiles.h"

#include <QDir>
#include <QTemporaryDir>

/// A folder of a test's own as that of the user's documents, while this object lives.
class DocumentsFolder final
{
public:
    DocumentsFolder()
    {
        QDir(m_home.path()).mkdir(QStringLiteral("Documents"));
        writeFile(m_home.filePath(QStringLiteral("user-dirs.dirs")),
                  "XDG_DOCUMENTS_DIR=\"" + path().toUtf8() + "\"\n");
        qputenv("XDG_CONFIG_HOME", m_home.path().toUtf8());
    }
    ~DocumentsFolder() { qputenv("XDG_CONFIG_HOME", m_before); }
    DocumentsFolder(const DocumentsFolder &) = delete;
    DocumentsFolder &operator=(const DocumentsFolder &) = delete;

    [[nodiscard]] QString path() const { return m_home.filePath(QStringLiteral("Documents")); }

private:
    QTemporaryDir m_home;
    QByteArray m_before = qgetenv("XDG_CONFIG_HOME");
};
