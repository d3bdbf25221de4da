#include "QSTestRun.h"

#include <cstdio>
#include <exception>

using namespace Qt::Literals::StringLiterals;

void QSTestRun::begin(const QString &title)
{
    std::printf("== %s\n", qUtf8Printable(title));
    std::fflush(stdout);
}

void QSTestRun::check(bool ok, const QString &text)
{
    ++(ok ? passed : failed);
    lines.append((ok ? u"PASS  "_s : u"FAIL  "_s) + text);
    std::printf("%s\n", qUtf8Printable(lines.constLast()));
    std::fflush(stdout);
}

void QSTestRun::attempt(const QString &text, const std::function<bool()> &holds)
{
    try {
        check(holds(), text);
    } catch (const std::exception &error) {
        check(false, u"%1: %2"_s.arg(text, QString::fromUtf8(error.what())));
    }
}
