#include "capture/ConnectionName.h"

#include <gtest/gtest.h>

#include "tests/unit/support/TestServices.h"

namespace vardel::test {

namespace {

const std::string kNetwork = "SYSTEM\\CurrentControlSet\\Control\\Network";
const std::string kDevice = "\\Device\\NPF_{AA-11}";

// The machine's connections as its configuration keeps them.
class ConnectionName : public testing::Test {
  protected:
    void SetUp() override { config.keys.insert(kNetwork); }

    void Connect(const std::string& deviceClass, const std::string& identifier, const std::string& name) {
        AddKeys(deviceClass, identifier, "Connection");
        config.values[kNetwork + "\\" + deviceClass + "\\" + identifier + "\\Connection|Name"] = name;
    }
    void AddKeys(const std::string& deviceClass, const std::string& identifier, const std::string& child) {
        std::string path = kNetwork;
        for (const std::string& part : {deviceClass, identifier, child})
            config.keys.insert(path += "\\" + part);
    }
    std::string NameOf(const std::string& device) {
        TcString name("untouched");
        FindConnectionName(config, device.c_str(), name);
        EXPECT_EQ(config.open, 0) << "a key stayed open";
        return name.GetContent();
    }

    ScriptedMachineConfig config;
};

}  // namespace

TEST_F(ConnectionName, ComesFromTheKeyOfTheDevicesIdentifier) {
    Connect("{4D36}", "{AA-11}", "Local Area Connection");
    Connect("{4D36}", "{BB-22}", "Wireless");
    EXPECT_EQ(NameOf(kDevice), "Local Area Connection");
    EXPECT_EQ(NameOf("\\Device\\NPF_{BB-22}"), "Wireless");
}

TEST_F(ConnectionName, OfADeviceWithoutAnIdentifierStaysUntouched) {
    Connect("{4D36}", "{AA-11}", "Local Area Connection");
    EXPECT_EQ(NameOf("\\Device\\NPF_Loopback"), "untouched");
    EXPECT_EQ(NameOf("eth0"), "untouched");
}

TEST_F(ConnectionName, OfAnEmptyDeviceStaysUntouched) {
    Connect("{4D36}", "{AA-11}", "Local Area Connection");
    EXPECT_EQ(NameOf(""), "untouched");
}

TEST_F(ConnectionName, IsTheLastOneWhereSeveralMatch) {
    Connect("{4D36}", "{AA-11}", "first");
    Connect("{5E47}", "{AA-11}", "second");
    Connect("{6F58}", "{CC-33}", "another device's");
    EXPECT_EQ(NameOf(kDevice), "second");
}

TEST_F(ConnectionName, ComparesIdentifiersCaseSensitive) {
    Connect("{4D36}", "{aa-11}", "lower case");
    EXPECT_EQ(NameOf(kDevice), "untouched");
}

TEST_F(ConnectionName, ComparesIdentifiersWhole) {
    Connect("{4D36}", "{AA-11}2", "longer");
    Connect("{4D36}", "{AA-1", "shorter");
    EXPECT_EQ(NameOf(kDevice), "untouched");
    EXPECT_EQ(NameOf("\\Device\\NPF_{AA-11}2"), "longer");
}

TEST_F(ConnectionName, StartsAtTheFirstBraceOfTheDeviceName) {
    Connect("{4D36}", "{AA}{BB}", "both");
    Connect("{4D36}", "{BB}", "the second alone");
    EXPECT_EQ(NameOf("\\Device\\NPF_{AA}{BB}"), "both");
}

TEST_F(ConnectionName, AnEmptyNameDoesNotReplaceAnEarlierOne) {
    Connect("{4D36}", "{AA-11}", "first");
    Connect("{5E47}", "{AA-11}", "");
    EXPECT_EQ(NameOf(kDevice), "first");
}

TEST_F(ConnectionName, IsReadFromTheKeyConnectionAlone) {
    AddKeys("{4D36}", "{AA-11}", "connection");
    config.values[kNetwork + "\\{4D36}\\{AA-11}\\connection|Name"] = "other spelling";
    AddKeys("{4D36}", "{AA-11}", "Linkage");
    config.values[kNetwork + "\\{4D36}\\{AA-11}\\Linkage|Name"] = "other key";
    config.values[kNetwork + "\\{4D36}\\{AA-11}|Name"] = "the device's own value";
    EXPECT_EQ(NameOf(kDevice), "untouched");
}

TEST_F(ConnectionName, WithoutItsValueStaysUntouched) {
    AddKeys("{4D36}", "{AA-11}", "Connection");
    EXPECT_EQ(NameOf(kDevice), "untouched");
}

TEST_F(ConnectionName, IsCutTo199Characters) {
    Connect("{4D36}", "{AA-11}", std::string(300, 'n'));
    EXPECT_EQ(NameOf(kDevice), std::string(199, 'n'));
}

TEST_F(ConnectionName, OfAMachineWithoutTheTreeStaysUntouched) {
    config.keys.clear();
    EXPECT_EQ(NameOf(kDevice), "untouched");
}

}  // namespace vardel::test
