#include "QSDisclaimer.h"

namespace QSDisclaimer {
const QString full = QStringLiteral(
    "Vell Quillstone helps you find, fill in and print paperwork. It is not a lawyer, it is not a "
    "law firm, and nothing in it is legal advice.\n\n"
    "The official forms come straight from the web sites of the courts and agencies that publish "
    "them. Agencies change their forms, fees and rules without notice; the agency's own page "
    "always has the last word.\n\n"
    "The plain-English templates are general documents. They are not official forms, and no "
    "template fits every state, every county or every situation. Laws vary by state. For anything "
    "important, have an attorney read the document before anybody signs it.\n\n"
    "Everything you type stays on this computer. The program contacts a government site only to "
    "get an official form or to check that a link still works.\n\n"
    "If you are in danger, call 911. Legal aid organizations give free help to people who "
    "qualify, and court self-help centers answer questions about forms and procedure.");
}
