#include "ui/SingleInstance.h"

#include "platform/UserFolders.h"

#include <QCryptographicHash>
#include <QLocalServer>
#include <QLocalSocket>
#include <unistd.h>

namespace qf::ui {

namespace {

constexpr int kConnectMs = 500;
constexpr QByteArrayView kActivateRequest = "activate\n";

} // namespace

QString SingleInstance::DefaultName() {
    const auto settings = SettingsFilePath();
    const QByteArray where =
        settings ? QByteArray::fromStdString(settings->string()) : QByteArray();
    const QByteArray digest = QCryptographicHash::hash(where, QCryptographicHash::Sha1).toHex();
    return QStringLiteral("quillfeed-%1-%2")
        .arg(getuid())
        .arg(QString::fromLatin1(digest.left(12)));
}

SingleInstance::SingleInstance(QString name) : name_(std::move(name)) {}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::ActivateRunning() {
    QLocalSocket socket;
    socket.connectToServer(name_);
    if (!socket.waitForConnected(kConnectMs)) {
        return false;
    }
    socket.write(kActivateRequest.data(), kActivateRequest.size());
    socket.waitForBytesWritten(kConnectMs);
    socket.disconnectFromServer();
    return true;
}

bool SingleInstance::Listen(std::function<void()> onActivate) {
    onActivate_ = std::move(onActivate);
    server_ = new QLocalServer(this);
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    // A server left behind by a program that crashed would block the name.
    QLocalServer::removeServer(name_);
    if (!server_->listen(name_)) {
        return false;
    }
    connect(server_, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = server_->nextPendingConnection()) {
            connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
                if (socket->readAll().startsWith("activate") && onActivate_) {
                    onActivate_();
                }
            });
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
    return true;
}

} // namespace qf::ui
