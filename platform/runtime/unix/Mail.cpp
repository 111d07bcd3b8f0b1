#include "platform/runtime/Mail.h"

#include "platform/runtime/Failure.h"

#include <QDesktopServices>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace runtime {

namespace {

constexpr int MailFailure = 32002;
constexpr int NoMailProgram = 32003;

bool HasMailProgram() {
    const QString query = QStandardPaths::findExecutable(QStringLiteral("xdg-mime"));
    if (query.isEmpty())
        return false;
    constexpr int LongestWait = 5000;
    QProcess process;
    process.start(query, {QStringLiteral("query"), QStringLiteral("default"),
                          QStringLiteral("x-scheme-handler/mailto")});
    if (!process.waitForFinished(LongestWait))
        return false;
    const QString entry = QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
    return !entry.isEmpty() && !QStandardPaths::locate(QStandardPaths::ApplicationsLocation, entry).isEmpty();
}

/// The name in quotes, since it may hold what has a meaning in an address.
QString Recipient(QString name, const QString& address) {
    name.replace(u'\\', QStringLiteral("\\\\"));
    name.replace(u'"', QStringLiteral("\\\""));
    return u'"' + name + QStringLiteral("\" <") + address + u'>';
}

} // namespace

void MapiSession::SignOn() {
    if (!HasMailProgram())
        Raise(NoMailProgram);
    m_open = true;
}

void MapiSession::SignOff() {
    m_open = false;
}

void MapiMessage::Send(bool withDialog) {
    // Only the mail program's own window sends; nothing leaves without the user.
    if (!withDialog)
        Raise(InvalidCall);
    const QByteArray recipient = QUrl::toPercentEncoding(Recipient(RecipDisplayName, RecipAddress), "@");
    const QUrl address = QUrl::fromEncoded("mailto:" + recipient, QUrl::StrictMode);
    if (!QDesktopServices::openUrl(address))
        Raise(MailFailure);
}

} // namespace runtime
