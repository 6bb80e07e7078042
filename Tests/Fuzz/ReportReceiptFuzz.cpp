#include "Reports/ReportReceipt.h"
#include "Require.h"

/// An answer confirms only the report whose identifier it names.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QByteArray body(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    static const QUuid sent(QStringLiteral("{0e984725-c51c-4bf4-9960-e1c80e27aba0}"));
    const auto receipt = ReportReceipt::decode(body);
    const bool matches = receipt && receipt->accepted && receipt->reportID == sent &&
                         body.size() <= ReportReceipt::largestBody;
    FUZZ_REQUIRE(ReportReceipt::confirm(200, body, sent).has_value() == matches);
    FUZZ_REQUIRE(!ReportReceipt::confirm(500, body, sent));
    return 0;
}
