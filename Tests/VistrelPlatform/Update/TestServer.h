#pragma once

#include "Support/TestAuthority.h"

#include <QSslConfiguration>
#include <QSslServer>
#include <QSslSocket>
#include <QTimer>
#include <QUrl>

#include <functional>
#include <map>

/// A TLS server on the loopback interface that answers as a test says, well or badly.
class TestServer {
public:
    /// What is done with a connection once a request has been read.
    using Answer = std::function<void(QSslSocket&)>;

    TestServer() : TestServer(TestAuthority::Subject()) {}
    explicit TestServer(const TestAuthority::Subject& identity) {
        const TestAuthority::Identity own = authority.issue(identity);
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setLocalCertificate(own.certificate);
        tls.setPrivateKey(own.key);
        tls.setPeerVerifyMode(QSslSocket::VerifyNone);
        server.setSslConfiguration(tls);
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QSslServer::pendingConnectionAvailable, &server, [this] { accept(); });
    }

    QUrl address(const QString& path = QStringLiteral("/feed")) const {
        return QUrl(QStringLiteral("https://127.0.0.1:%1%2").arg(server.serverPort()).arg(path));
    }
    QList<QSslCertificate> authorities() const { return {authority.certificate()}; }

    void serve(const QString& path, Answer answer) { answers[path] = std::move(answer); }
    void serve(const QString& path, const QByteArray& body) { serve(path, whole(body)); }

    static Answer whole(const QByteArray& body, const QByteArray& status = "200 OK",
                        const QByteArray& headers = {}) {
        return [=](QSslSocket& socket) {
            socket.write("HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) +
                         "\r\nConnection: close\r\n" + headers + "\r\n" + body);
            socket.disconnectFromHost();
        };
    }
    /// Announces `announced` bytes and breaks the connection off after `body`.
    static Answer cutShort(const QByteArray& body, qint64 announced) {
        return [=](QSslSocket& socket) {
            socket.write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(announced) + "\r\n\r\n" +
                         body);
            socket.disconnectFromHost();
        };
    }
    static Answer redirect(const QUrl& target) {
        return whole({}, "302 Found", "Location: " + target.toEncoded() + "\r\n");
    }
    static Answer silence() {
        return [](QSslSocket&) {};
    }
    /// Goes on for ever, `piece` after `piece`, without saying how long it is.
    static Answer endless(const QByteArray& piece) {
        return [=](QSslSocket& socket) {
            socket.write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n");
            auto* timer = new QTimer(&socket);
            QObject::connect(timer, &QTimer::timeout, &socket, [&socket, piece] {
                if (socket.bytesToWrite() < piece.size())
                    socket.write(piece);
            });
            timer->start(1);
        };
    }

    /// The first lines and headers of what was asked for, in order.
    QByteArrayList requests;

private:
    void accept() {
        auto* socket = qobject_cast<QSslSocket*>(server.nextPendingConnection());
        QObject::connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QSslSocket::readyRead, socket, [this, socket] {
            pending[socket] += socket->readAll();
            if (!pending[socket].contains("\r\n\r\n"))
                return;
            const QByteArray request = pending.take(socket);
            requests << request;
            const QString path = QString::fromLatin1(request.split(' ').value(1));
            const auto answer = answers.find(path);
            (answer != answers.end() ? answer->second : whole("missing", "404 Not Found"))(*socket);
        });
    }

    TestAuthority authority;
    QSslServer server;
    std::map<QString, Answer> answers;
    QHash<QSslSocket*, QByteArray> pending;
};
