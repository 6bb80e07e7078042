#pragma once

#include "Support/TestAuthority.h"

#include <QMap>
#include <QPointer>
#include <QSslServer>
#include <QSslSocket>
#include <QUrl>

#include <functional>
#include <vector>

/// A real TLS server on loopback that answers each request as the test says, however badly.
class TLSTestServer {
public:
    struct Request {
        QByteArray method;
        QByteArray path;
        QMap<QByteArray, QByteArray> headers; // names in lower case
        QByteArray body;
    };
    using Answer = std::function<void(QTcpSocket&, const Request&)>;

    explicit TLSTestServer(const TestAuthority::Identity& identity) {
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.setLocalCertificate(identity.certificate);
        configuration.setPrivateKey(identity.key);
        configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
        server.setSslConfiguration(configuration);
        QObject::connect(&server, &QSslServer::pendingConnectionAvailable, &server, [this] {
            while (QTcpSocket* socket = server.nextPendingConnection())
                serve(*socket);
        });
        server.listen(QHostAddress::LocalHost);
    }

    QUrl url(const QString& path) const {
        return QUrl(QStringLiteral("https://127.0.0.1:%1%2").arg(server.serverPort()).arg(path));
    }
    void close() { server.close(); }

    /// Requests in the order of their arrival.
    std::vector<Request> requests;
    int connections = 0;
    int openConnections = 0;
    Answer answer;

    static void respond(QTcpSocket& socket, int status, const QByteArray& body,
                        const QByteArray& headers = {}) {
        socket.write("HTTP/1.1 " + QByteArray::number(status) + " Status\r\nContent-Length: " +
                     QByteArray::number(body.size()) + "\r\n" + headers + "\r\n" + body);
    }

private:
    void serve(QTcpSocket& socket) {
        ++connections;
        ++openConnections;
        QObject::connect(&socket, &QTcpSocket::disconnected, &server, [this] { --openConnections; });
        const auto received = std::make_shared<QByteArray>();
        QObject::connect(&socket, &QTcpSocket::readyRead, &server, [this, &socket, received] {
            *received += socket.readAll();
            read(socket, *received);
        });
        QObject::connect(&socket, &QTcpSocket::disconnected, &socket, &QObject::deleteLater);
    }
    void read(QTcpSocket& socket, QByteArray& received) {
        const qsizetype end = received.indexOf("\r\n\r\n");
        if (end < 0)
            return;
        QList<QByteArray> lines = received.left(end).split('\n');
        const QList<QByteArray> first = lines.takeFirst().trimmed().split(' ');
        Request request{.method = first.value(0), .path = first.value(1), .headers = {}, .body = {}};
        for (const QByteArray& line : lines) {
            const qsizetype colon = line.indexOf(':');
            request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
        }
        const qsizetype size = request.headers.value("content-length").toLongLong();
        if (received.size() < end + 4 + size)
            return;
        request.body = received.mid(end + 4, size);
        received.remove(0, end + 4 + size);
        requests.push_back(request);
        if (answer)
            answer(socket, request);
    }

    QSslServer server;
};
