#include "TrialRun.h"

#include "Answered.h"
#include "Answers.h"
#include "QSError.h"
#include "QSPDFDocument.h"

#include <QDir>
#include <QFile>

#include <array>
#include <cstdio>
#include <optional>
#include <set>

#include <sys/resource.h>

using namespace Qt::Literals::StringLiterals;

namespace {
using Pass = Answers::Pass;

struct NamedPass
{
    Pass pass;
    QStringView name; // of its folder, too
};
constexpr std::array passes{NamedPass{Pass::fitting, u"fitting"},
                            NamedPass{Pass::scripts, u"scripts"},
                            NamedPass{Pass::tooLong, u"too-long"}};

void say(const char *key, const QString &text)
{
    std::printf("%s\t%s\n", key, text.simplified().toUtf8().constData());
    std::fflush(stdout);
}

QByteArray readWhole(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("%s can't be written", qPrintable(path));
    }
}

QString withOneLineEnd(QString text)
{
    return text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
}

bool sameValue(FormValue first, FormValue second)
{
    first.text = withOneLineEnd(first.text);
    second.text = withOneLineEnd(second.text);
    return first == second;
}

void limit(__rlimit_resource resource, rlim_t most)
{
    const rlimit limits{most, most};
    setrlimit(resource, &limits);
}

/// One pass over one form.
class Filling final
{
public:
    Filling(const NamedPass &pass, const QByteArray &pdf, const QString &folder)
        : m_pass(pass),
          m_name(pass.name.toString()),
          m_folder(folder + u'/' + m_name),
          m_document(QSPDFDocument::open(pdf)),
          m_before(m_document->values())
    {
        QDir().mkpath(m_folder);
    }

    void run()
    {
        say("stage", u"filling (%1)"_s.arg(m_name));
        fill();
        write(m_folder + u"/answers.json"_s, Answered::toJSON(answered()));
        say("stage", u"saving (%1)"_s.arg(m_name));
        saveAndReopen();
        say("stage", u"flattening (%1)"_s.arg(m_name));
        flatten();
    }

private:
    void fill()
    {
        const auto answers = Answers::of(m_pass.pass, m_document->fields());
        for (const auto &[id, value] : answers) {
            m_answered.insert(keyOf(m_document->fields().at(id)));
            m_document->setValue(id, value);
        }
        for (const auto &[id, value] : answers) {
            if (!sameValue(m_document->value(id), value)) {
                say("lost", u"%1: %2 did not take its answer"_s.arg(m_name, placeOf(id)));
            }
        }
    }

    [[nodiscard]] QList<Answered> answered() const
    {
        QList<Answered> answered;
        for (const FormField &field : m_document->fields()) {
            if (field.isSettable() && field.shown && m_answered.contains(keyOf(field))) {
                answered.append(answerOf(field.id));
            }
        }
        return answered;
    }

    void saveAndReopen() const
    {
        try {
            const QByteArray saved = m_document->bytes();
            write(m_folder + u"/saved.pdf"_s, saved);
            compare(QSPDFDocument::open(saved)->values());
        } catch (const QSError &error) {
            say("lost", u"%1: the saved copy: %2"_s.arg(m_name, error.description()));
        }
    }

    void compare(const QList<FormValue> &reopened) const
    {
        const QList<FormValue> values = m_document->values();
        if (reopened.size() != values.size()) {
            say("lost", u"%1: %2 fields, after saving %3"_s.arg(m_name)
                            .arg(values.size())
                            .arg(reopened.size()));
            return;
        }
        for (int id = 0; id < values.size(); ++id) {
            if (!sameValue(values.at(id), reopened.at(id))) {
                say("lost", u"%1: %2 is another after saving"_s.arg(m_name, placeOf(id)));
            }
        }
    }

    void flatten() const
    {
        try {
            write(m_folder + u"/flat.pdf"_s, m_document->flattened());
        } catch (const QSError &error) {
            if (m_pass.pass != Pass::tooLong) { // those rightly
                say("filled", u"%1: %2"_s.arg(m_name, error.description()));
            }
        }
    }

    [[nodiscard]] Answered answerOf(int id) const
    {
        return Answered::of(m_document->fields().at(id), m_document->value(id), m_before.at(id));
    }
    [[nodiscard]] QString placeOf(int id) const { return answerOf(id).place(); }

    static QString keyOf(const FormField &field)
    {
        return field.name.isEmpty() ? u"/%1"_s.arg(field.id) : field.name;
    }

    const NamedPass &m_pass;
    QString m_name;
    QString m_folder;
    std::shared_ptr<QSPDFDocument> m_document;
    QList<FormValue> m_before;
    std::set<QString> m_answered;
};

void flattenUntouched(const QSPDFDocument &document, const QString &folder)
{
    say("stage", u"flattening (untouched)"_s);
    try {
        write(folder + u"/untouched.pdf"_s, document.flattened());
    } catch (const QSError &error) {
        say("untouched", error.description());
    }
}

/// False when there is nothing to fill.
bool openUntouched(const QByteArray &pdf, const QString &folder)
{
    say("stage", u"opening"_s);
    try {
        const auto document = QSPDFDocument::open(pdf);
        say("pages", QString::number(document->pageCount()));
        say("fields", QString::number(document->fields().size()));
        flattenUntouched(*document, folder);
        return true;
    } catch (const QSError &error) {
        say("refused", error.description());
        return false;
    }
}
} // namespace

void TrialRun::limitThisProcess()
{
    limit(RLIMIT_AS, rlim_t{3} << 30);
    limit(RLIMIT_CPU, 120);
    limit(RLIMIT_CORE, 0);
}

int TrialRun::run(const QString &pdf, const QString &folder)
{
    const QByteArray bytes = readWhole(pdf);
    try {
        if (openUntouched(bytes, folder)) {
            for (const NamedPass &pass : passes) {
                Filling(pass, bytes, folder).run();
            }
        }
        say("stage", u"end"_s);
        return 0;
    } catch (const std::exception &error) {
        say("lost", u"stopped by an error that isn't for people: %1"_s.arg(
                        QString::fromUtf8(error.what())));
        return 1;
    }
}
