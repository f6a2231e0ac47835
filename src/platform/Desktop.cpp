#include "platform/Desktop.h"

#include <QClipboard>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <memory>

QUrl Desktop::fileUrl(const std::string &path)
{
    return QUrl::fromEncoded("file://" + QByteArray::fromStdString(path).toPercentEncoding("/"));
}

void Desktop::copyPath(const std::string &path)
{
    auto data = std::make_unique<QMimeData>();
    data->setText(QFile::decodeName(QByteArray::fromStdString(path)));
    data->setUrls({fileUrl(path)});
    QGuiApplication::clipboard()->setMimeData(data.release()); // the clipboard takes it
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
