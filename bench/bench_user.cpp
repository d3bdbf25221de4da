// Called by bench_start: makes the user of the environment one who has accepted the disclaimer and
// has as many documents as the first argument says.
#include "QSInfo.h"
#include "QSPrefs.h"
#include "Samples.h"

#include <QCoreApplication>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QSPrefs::setDisclaimerAccepted(true);
    QSStore store(QSInfo::databaseURL());
    Samples().fill(store, QCoreApplication::arguments().value(1).toInt());
    return 0;
}
