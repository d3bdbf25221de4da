#pragma once

#include "RowPool.h"

#include <QList>
#include <QScrollArea>
#include <QString>

class AidRow;
class AppModel;
class QLabel;
struct QSLegalAid;

/// Legal Aid & Help: who helps people of the chosen state for little or no money, a row each with
/// the way to the website.
class LegalAidView final : public QScrollArea
{
    Q_OBJECT

public:
    explicit LegalAidView(AppModel &model, QWidget *parent = nullptr);

private:
    [[nodiscard]] QWidget *createEmergency();
    /// The state's self-help center, then its legal aid.
    [[nodiscard]] QList<QSLegalAid> offers() const;
    void showState();

    AppModel &m_model;
    QString m_shown; ///< code of the state whose rows are there
    QLabel *m_introduction;
    QVBoxLayout *m_column;
    RowPool<AidRow> m_rows;
};
