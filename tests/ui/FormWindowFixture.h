#pragma once

#include "ModelFixture.h"
#include "WindowHand.h"
#include "formwindow/FieldControl.h"
#include "formwindow/FormView.h"
#include "formwindow/FormWindow.h"
#include "formwindow/PageList.h"

#include <QLineEdit>
#include <QPlainTextEdit>

/// The form window on a scratch user's empty database, what it shows and what its document holds.
class FormWindowFixture : protected WindowHand, protected ModelFixture
{
protected:
    [[nodiscard]] QWidget *window() const override { return m_window.get(); }

    void begin()
    {
        beginModel();
        m_window = std::make_unique<FormWindow>(*m_model);
        m_window->resize(QSize(60, 44) * m_window->fontMetrics().height()); // room for the pages
    }

    void end()
    {
        m_window.reset();
        endModel();
    }

    void open(const QByteArray &pdf)
    {
        const QSFilledPDF record = QSStore::shared()->saveFilledPDF(
            QStringLiteral("us-test"), QStringLiteral("Test form"), pdf);
        m_model->openSaved(record);
        QTRY_VERIFY(m_model->openPDF());
        find();
    }

    void find()
    {
        m_view = m_window->findChild<FormView *>();
        m_pages = m_window->findChild<PageList *>();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    /// Closes what a test has changed.
    void discard()
    {
        if (m_window->isWindowModified()) {
            m_desktop->answers = {dontSave};
        }
        QVERIFY(m_model->closeForm());
    }

    [[nodiscard]] QSPDFDocument &document() const { return m_model->openPDF()->document(); }

    /// What the document holds in a field, as text.
    [[nodiscard]] QString held(int field) const
    {
        const FormField::Kind kind = document().fields().at(field).kind;
        const FormValue value = document().value(field);
        if (kind == FormField::Kind::checkBox || kind == FormField::Kind::radio) {
            return value.on ? QStringLiteral("on") : QStringLiteral("off");
        }
        QStringList chosen;
        for (const int row : value.chosen) {
            chosen.append(QString::number(row));
        }
        return chosen.isEmpty() ? value.text : chosen.join(u' ');
    }

    [[nodiscard]] QString shownIn(int field) const
    {
        QWidget *widget = m_view->control(field)->widget();
        if (auto *line = qobject_cast<QLineEdit *>(widget)) {
            return line->text();
        }
        return qobject_cast<QPlainTextEdit *>(widget)->toPlainText();
    }

    /// The field that has the keyboard, or -1.
    [[nodiscard]] int openField() const
    {
        for (const FormField &field : document().fields()) {
            const FieldControl *control = m_view->control(field.id);
            if (control && control->isOpen()) {
                return field.id;
            }
        }
        return -1;
    }

    /// The first page as it is on the screen.
    [[nodiscard]] QImage paper() const
    {
        return m_view->control(0)->widget()->parentWidget()->grab().toImage();
    }

    void undo() const { press(Qt::Key_Z, Qt::ControlModifier); }

    std::unique_ptr<FormWindow> m_window;
    FormView *m_view = nullptr;
    PageList *m_pages = nullptr;
};
