#include "AppModel.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

std::optional<QMap<QString, QString>> AppModel::savedProfile()
{
    std::optional<QMap<QString, QString>> saved;
    withStore([&saved](QSStore &open) { saved = open.profile(); });
    return saved;
}

QMap<QString, QString> AppModel::profile()
{
    if (m_profileEdits) {
        return *m_profileEdits;
    }
    return store() ? savedProfile().value_or(QMap<QString, QString>()) : QMap<QString, QString>();
}

void AppModel::setProfileValue(const QString &key, const QString &value)
{
    // Edits stand on what is saved: where that can't be read, saving would wipe it out.
    const std::optional<QMap<QString, QString>> saved = savedProfile();
    if (!saved) {
        return;
    }
    QMap<QString, QString> edited = m_profileEdits.value_or(*saved);
    edited.insert(key, value);
    const bool same = std::ranges::all_of(edited.keys(), [&](const QString &each) {
        return edited.value(each) == saved->value(each);
    });
    m_profileEdits = same ? std::nullopt : std::optional(edited);
    draftSoon();
    Q_EMIT profileEdited();
}

bool AppModel::saveProfile()
{
    const bool done =
        !m_profileEdits || withStore([this](QSStore &open) { open.saveProfile(*m_profileEdits); });
    if (done) {
        m_profileEdits.reset();
        keepDrafts();
        setMessage(u"Profile saved."_s);
        Q_EMIT profileEdited();
    }
    return done;
}
