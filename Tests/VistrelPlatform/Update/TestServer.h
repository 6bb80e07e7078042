#pragma once

#include "Support/TLSTestServer.h"

#include <QTimer>

#include <map>

/// Files on a server, served well or badly, each over a connection of its own.
class TestServer {
public:
    using Answer = std::function<void(QTcpSocket&)>;

    explicit TestServer(const TestAuthority::Subject& identity = {}) : server(authority.issue(identity)) {
        server.answer = [this](QTcpSocket& socket, const TLSTestServer::Request& request) {
            const auto answer = answers.find(QString::fromLatin1(request.path));
            (answer != answers.end() ? answer->second : whole("missing", "404 Not Found"))(socket);
        };
    }

    QUrl address(const QString& path = QStringLiteral("/feed")) const { return server.url(path); }
    QByteArray authorities() const { return authority.certificate().toPem(); }
    const std::vector<TLSTestServer::Request>& requests() const { return server.requests; }

    void serve(const QString& path, Answer answer) { answers[path] = std::move(answer); }
    void serve(const QString& path, const QByteArray& body) { serve(path, whole(body)); }

    /// Says exactly this and hangs up.
    static Answer raw(const QByteArray& answer) {
        return [=](QTcpSocket& socket) {
            socket.write(answer);
            socket.disconnectFromHost();
        };
    }
    static Answer whole(const QByteArray& body, const QByteArray& status = "200 OK",
                        const QByteArray& headers = {}) {
        return raw("HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) +
                   "\r\nConnection: close\r\n" + headers + "\r\n" + body);
    }
    static Answer redirect(const QByteArray& target) {
        return whole({}, "302 Found", "Location: " + target + "\r\n");
    }
    static Answer silence() {
        return [](QTcpSocket&) {};
    }
    /// Goes on for ever, `piece` after `piece`, without saying how long it is.
    static Answer endless(const QByteArray& piece) {
        return [=](QTcpSocket& socket) {
            socket.write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n");
            auto* timer = new QTimer(&socket);
            QObject::connect(timer, &QTimer::timeout, &socket, [&socket, piece] {
                if (socket.bytesToWrite() < piece.size())
                    socket.write(piece);
            });
            timer->start(1);
        };
    }

private:
    TestAuthority authority;
    TLSTestServer server;
    std::map<QString, Answer> answers;
};
