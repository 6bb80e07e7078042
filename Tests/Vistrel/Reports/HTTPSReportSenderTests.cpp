#include "Reports/HTTPSReportSender.h"
#include "Reports/ReportReceipt.h"
#include "Reports/ReportUploadError.h"
#include "Support/LinkedNetwork.h"
#include "Support/TLSTestServer.h"
#include "VistrelPlatform/System/UuidText.h"

#include <QCoreApplication>
#include <QFuture>
#include <QTcpServer>
#include <QTimer>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Answer = TLSTestServer::Answer;

const QUuid reportID(u"{0e984725-c51c-4bf4-9960-e1c80e27aba0}"_s);
const QByteArray report = R"({"comment":"ü","schema":2})";

QByteArray receipt(const QUuid& id = reportID, const char* accepted = "true") {
    return "{\"accepted\":" + QByteArray(accepted) + ",\"reportID\":\"" + UuidText::upperCase(id).toLatin1() +
           "\"}";
}
Answer respond(int status, const QByteArray& body, const QByteArray& headers = {}) {
    return [=](QTcpSocket& socket, const TLSTestServer::Request&) {
        TLSTestServer::respond(socket, status, body, headers);
    };
}

std::optional<ReportUploadError> outcome(const QFuture<Result<void>>& future) {
    while (!future.isFinished())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const Result<void> result = future.result();
    if (result)
        return std::nullopt;
    EXPECT_EQ(result.error(), reportUploadError(static_cast<ReportUploadError>(result.error().code)));
    return static_cast<ReportUploadError>(result.error().code);
}

class HTTPSReportSenderTests : public ::testing::Test {
protected:
    const TestAuthority authority;
    TLSTestServer server{authority.issue()};

    QUrl url() const { return server.url(u"/v1/reports"_s); }
    std::optional<ReportUploadError> send(const QUrl& to, const QByteArray& bytes = report) const {
        HTTPSReportSender sender(to, linkedNetwork, configuration);
        return outcome(sender.send(bytes, reportID));
    }

    HTTPSReportSender::Configuration configuration{.testAuthorities = authority.certificate().toPem()};
};

TEST_F(HTTPSReportSenderTests, postsTheBytesAndTellsNothingElse) {
    server.answer = respond(200, receipt(), "Set-Cookie: id=1\r\n");
    HTTPSReportSender twice(url(), linkedNetwork, configuration);
    EXPECT_EQ(outcome(twice.send(report, reportID)), std::nullopt);
    EXPECT_EQ(outcome(twice.send(report, reportID)), std::nullopt);
    ASSERT_EQ(server.requests.size(), 2U);
    for (const TLSTestServer::Request& request : server.requests) {
        EXPECT_EQ(request.method, QByteArray("POST"));
        EXPECT_EQ(request.path, QByteArray("/v1/reports"));
        EXPECT_EQ(request.body, report);
        QMap<QByteArray, QByteArray> headers = request.headers;
        EXPECT_TRUE(headers.take("host").startsWith("127.0.0.1:"));
        EXPECT_EQ(headers, (QMap<QByteArray, QByteArray>{
                               {"content-type", "application/json"},
                               {"content-length", QByteArray::number(report.size())},
                               {"accept", "application/json"},
                               {"accept-encoding", "identity"},
                               {"accept-language", "*"},
                               {"user-agent", "Vistrel"},
                               {"connection", "Keep-Alive"},
                           }));
    }
}

TEST_F(HTTPSReportSenderTests, onlyAReceiptForThisReportIsDelivery) {
    using enum ReportUploadError;
    const std::tuple<const char*, Answer, std::optional<ReportUploadError>> rows[] = {
        {"created", respond(201, receipt()), std::nullopt},
        {"largestBody", respond(200, receipt().leftJustified(4096, ' ')), std::nullopt},
        {"oneByteMore", respond(200, receipt().leftJustified(4097, ' ')), unavailable},
        {"anotherReport", respond(200, receipt(QUuid::createUuid())), unavailable},
        {"acceptedNoBoolean", respond(200, receipt(reportID, "1")), unavailable},
        {"empty", respond(200, ""), unavailable},
        {"redirectThatKeepsTheMethod", respond(307, receipt(), "Location: /elsewhere\r\n"), unavailable},
        {"tooManyWords", respond(429, QByteArray(100000, 'x')), rateLimited},
        {"serverError", respond(500, receipt()), unavailable},
        {"compressed", respond(200, receipt(), "Content-Encoding: gzip\r\n"), std::nullopt},
    };
    for (const auto& [name, answer, expected] : rows) {
        SCOPED_TRACE(name);
        server.requests.clear();
        server.answer = answer;
        EXPECT_EQ(send(url()), expected);
        EXPECT_EQ(server.requests.size(), 1U) << "nothing is followed or repeated";
    }
}

TEST_F(HTTPSReportSenderTests, aCutConnectionIsOffline) {
    server.answer = [](QTcpSocket& socket, const auto&) {
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: 200\r\n\r\n{\"accepted\"");
        socket.flush();
        socket.disconnectFromHost();
    };
    EXPECT_EQ(send(url()), ReportUploadError::offline);
    EXPECT_EQ(server.requests.size(), 1U) << "one press, one upload";
    const QUrl closed = url();
    server.close();
    EXPECT_EQ(send(closed), ReportUploadError::offline);
}

TEST_F(HTTPSReportSenderTests, silenceEndsTheUploadAndSoDoesTrickling) {
    configuration.requestTimeoutMS = 200;
    const Answer stall = [](QTcpSocket& socket, const auto&) {
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: 200\r\n\r\n{\"accepted\"");
    };
    for (const Answer& silence : {stall, Answer()}) {
        server.answer = silence;
        EXPECT_EQ(send(url()), ReportUploadError::unavailable);
    }

    // Never silent for long, never done.
    configuration = {.testAuthorities = authority.certificate().toPem()};
    configuration.resourceTimeoutMS = 500;
    server.answer = [](QTcpSocket& socket, const auto&) {
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: 4000\r\n\r\n");
        auto* timer = new QTimer(&socket);
        QObject::connect(timer, &QTimer::timeout, &socket, [&socket] { socket.write(" "); });
        timer->start(20);
    };
    EXPECT_EQ(send(url()), ReportUploadError::unavailable);
}

TEST_F(HTTPSReportSenderTests, aCertificateThatDoesNotHoldIsNeverTalkedTo) {
    const TestAuthority foreign;
    const std::pair<const char*, TestAuthority::Identity> rows[] = {
        {"expired", authority.issue({.validFrom = -7200, .validUntil = -60})},
        {"notYetValid", authority.issue({.validFrom = 3600, .validUntil = 7200})},
        {"anotherHost", authority.issue({.names = "DNS:example.invalid"})},
        {"foreignAuthority", foreign.issue()},
    };
    for (const auto& [name, identity] : rows) {
        SCOPED_TRACE(name);
        TLSTestServer impostor(identity);
        impostor.answer = respond(200, receipt());
        EXPECT_EQ(send(impostor.url(u"/v1/reports"_s)), ReportUploadError::unavailable);
        EXPECT_TRUE(impostor.requests.empty());
    }
}

TEST_F(HTTPSReportSenderTests, plainHTTPIsNeverSpoken) {
    QTcpServer plain;
    ASSERT_TRUE(plain.listen(QHostAddress::LocalHost));
    const QString address = u"http://127.0.0.1:%1/v1/reports"_s.arg(plain.serverPort());
    for (const QString& insecure : {address, u"/v1/reports"_s, QString()})
        EXPECT_EQ(send(QUrl(insecure)), ReportUploadError::unavailable);
    EXPECT_FALSE(plain.hasPendingConnections());
}

TEST_F(HTTPSReportSenderTests, theLargestReportIsSentAndOneByteMoreIsNot) {
    server.answer = respond(200, receipt());
    EXPECT_EQ(send(url(), QByteArray(1048577, 'x')), ReportUploadError::tooLarge);
    EXPECT_TRUE(server.requests.empty());
    const QByteArray largest(1048576, 'x');
    EXPECT_EQ(send(url(), largest), std::nullopt);
    ASSERT_EQ(server.requests.size(), 1U);
    EXPECT_EQ(server.requests.front().body, largest);
}

TEST_F(HTTPSReportSenderTests, aSenderThatGoesEndsItsUploads) {
    auto one = std::make_unique<HTTPSReportSender>(url(), linkedNetwork, configuration);
    const QFuture<Result<void>> future = one->send(report, reportID);
    one.reset();
    ASSERT_TRUE(future.isFinished());
    EXPECT_TRUE(isCancelled(future.result().error()));
}

} // namespace
