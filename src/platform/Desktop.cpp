#include "platform/Desktop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>

QUrl Desktop::fileUrl(const std::string &path)
{
    return QUrl::fromEncoded("file://" + QByteArray::fromStdString(path).toPercentEncoding("/"));
}

void Desktop::reveal(const std::string &path)
{
    if (showItems({fileUrl(path).toString(QUrl::FullyEncoded)}))
        return;
    const auto slash = path.rfind('/');
    (void)openUrl(fileUrl(slash == std::string::npos || slash == 0 ? std::string("/")
                                                                   : path.substr(0, slash)));
}

void Desktop::openTrash(const std::string &homeTrash)
{
    if (openUrl(QUrl(QStringLiteral("trash:///"))))
        return;
    (void)openUrl(fileUrl(homeTrash + "/files"));
}

bool Desktop::showItems(const QStringList &uris)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return false;
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << uris << QString();
    return bus.call(call, QDBus::Block, 3000).type() == QDBusMessage::ReplyMessage;
}

bool Desktop::openUrl(const QUrl &url)
{
    return QDesktopServices::openUrl(url);
}
