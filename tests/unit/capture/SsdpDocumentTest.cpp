#include "capture/SsdpDocument.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/unit/support/SampleFile.h"

namespace vardel::test {
namespace {

constexpr std::size_t kRead = 4096;

struct Row {
    const char* sample;
    std::optional<std::string_view> friendlyName, presentationUrl;
};

TEST(SsdpDocument, SamplesMeanWhatTheirListSays) {
    const Row rows[] = {
        {"description.xml", "Meeting Room TV", "http://10.0.0.1:8001/"},
        {"colon.xml", "NAS", "/status.html"},
        {"late.xml", std::nullopt, std::nullopt},
        {"no-name.xml", std::nullopt, "http://10.0.0.1/"},
        {"unclosed.xml", std::nullopt, std::nullopt},
        {"hostile.xml", "%s%n&lt;b&gt;\"><script>alert(1)</script>\x07\xe4", "javascript:alert(1)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.sample);
        const std::string document = Sample(std::string("ssdp/") + row.sample).substr(0, kRead);
        const DeviceDescription description = ParseDeviceDescription(document);
        EXPECT_EQ(description.friendlyName, row.friendlyName);
        EXPECT_EQ(description.presentationUrl, row.presentationUrl);
    }
}

TEST(SsdpDocument, TheLateSampleNamesItselfInItsWhole) {
    const std::string document = Sample("ssdp/late.xml");
    EXPECT_EQ(ParseDeviceDescription(document).friendlyName, "Too Late");
}

TEST(SsdpDocument, AClosingTagCountsBehindItsOpeningOneAlone) {
    EXPECT_EQ(ParseDeviceDescription("</friendlyName><friendlyName>TV</friendlyName>").friendlyName, "TV");
    EXPECT_EQ(ParseDeviceDescription("</friendlyName><friendlyName>TV").friendlyName, std::nullopt);
    EXPECT_EQ(ParseDeviceDescription("<friendlyName><friendlyName>TV</friendlyName>").friendlyName, "<friendlyName>TV");
}

TEST(SsdpDocument, NothingInNothing) {
    const DeviceDescription description = ParseDeviceDescription({});
    EXPECT_EQ(description.friendlyName, std::nullopt);
    EXPECT_EQ(description.presentationUrl, std::nullopt);
}

}  // namespace
}  // namespace vardel::test
