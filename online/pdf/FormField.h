#pragma once

#include <QList>
#include <QRectF>
#include <QString>

// Poppler has a class FormField of its own outside any namespace, and of two functions with one
// name the whole program runs but one. The namespace keeps this one's apart; nobody has to spell
// it.
inline namespace quillstone {

/// One widget of a form: what the agency made of it. It never changes while its document is open;
/// what is typed into it is its FormValue. Several widgets can share one name: the buttons of a
/// radio group, or one answer that is printed in two places.
struct FormField
{
    enum class Kind { text, checkBox, radio, comboBox, listBox, pushButton, signature };

    struct Choice
    {
        QString label;       ///< what people see
        QString exportValue; ///< what the file stores

        bool operator==(const Choice &) const = default;
    };

    int id = 0; ///< position in QSPDFDocument::fields()
    Kind kind = Kind::text;
    QString name;    ///< fully qualified; may be empty
    QString label;   ///< for people: the agency's alternate name, else the name made readable
    QString onValue; ///< what a check box or radio button stores when it is on
    int page = 0;    ///< from 0
    QRectF rect;     ///< in points from the upper left corner of the page as it is shown
    bool readOnly = false;
    bool shown = true; ///< drawn on the screen
    bool required = false;

    // text and editable combo boxes
    bool multiLine = false;
    bool password = false;
    bool comb = false;
    int maxLength = 0;   ///< in characters; 0 is no limit
    double fontSize = 0; ///< in points; 0 is chosen to fit
    Qt::Alignment alignment = Qt::AlignLeft;

    // choices
    QList<Choice> choices;
    bool editable = false;    ///< a combo box that takes a text of its own
    bool multiSelect = false; ///< a list of which several can be chosen

    bool operator==(const FormField &) const = default;

    /// True when a person can change its value here.
    [[nodiscard]] bool isSettable() const
    {
        return !readOnly && kind != Kind::pushButton && kind != Kind::signature;
    }
};

/// What a widget holds. Which member counts depends on the widget's kind; the others stay as made.
struct FormValue
{
    QString text;      ///< text fields, and editable combo boxes with a text of their own
    bool on = false;   ///< check boxes and radio buttons
    QList<int> chosen; ///< combo boxes and lists: positions in FormField::choices, ascending

    bool operator==(const FormValue &) const = default;
};

} // namespace quillstone
