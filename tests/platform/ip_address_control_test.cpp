#include "platform/controls/ip_address_control.h"

#include <gtest/gtest.h>

namespace qx {
namespace {

TEST(IPAddressControlModel, AFullDottedAddressIsValid) {
    IPAddressControl ip(L"ctlIPAddress");
    ip.Text(L"192.168.1.10");
    EXPECT_TRUE(ip.IsValid());
    ip.Text(L"0.0.0.0");
    EXPECT_TRUE(ip.IsValid());
    ip.Text(L"255.255.255.255");
    EXPECT_TRUE(ip.IsValid());
}

TEST(IPAddressControlModel, MissingOrOversizedFieldsAreNotValid) {
    IPAddressControl ip(L"ctlIPAddress");
    for (const wchar_t* text :
         {L"", L"192.168.1", L"192.168..10", L"192.168.1.", L"256.1.1.1", L"1.2.3.4.5", L"1.2.3.1000", L"1.2.3.x"}) {
        ip.Text(text);
        EXPECT_FALSE(ip.IsValid()) << std::string(ip.Text().begin(), ip.Text().end());
    }
}

TEST(IPAddressControlModel, SettingTextFromCodeRaisesChangeWhenItDiffers) {
    IPAddressControl ip(L"ctlIPAddress");
    int changes = 0;
    ip.OnChange = [&] { ++changes; };
    ip.Text(L"10.0.0.1");
    ip.Text(L"10.0.0.1");
    EXPECT_EQ(changes, 1);
}

TEST(IPAddressControlModel, TypingKeepsDigitsAndDotsOnlyThreeDigitsAFieldAndFourFields) {
    IPAddressControl ip(L"ctlIPAddress");
    int changes = 0;
    ip.OnChange = [&] { ++changes; };
    ip.UserType(L"19a2.1688.1.10.7");
    EXPECT_EQ(ip.Text(), L"192.168.1.107");
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(ip.IsValid());
}

TEST(IPAddressControlModel, ADisabledEntryTakesNoTyping) {
    IPAddressControl ip(L"ctlIPAddress");
    ip.Enabled(false);
    ip.UserType(L"1.2.3.4");
    EXPECT_EQ(ip.Text(), L"");
}

}  // namespace
}  // namespace qx
