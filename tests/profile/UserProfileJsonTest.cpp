// SPDX-License-Identifier: AGPL-3.0-or-later
#include "profile/UserProfileJson.h"

#include "support/Printing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace quillo {
namespace {

using testing::HasSubstr;

UserProfile fullProfile()
{
    UserProfile profile;
    profile.firstName = QStringLiteral("\u00c9mile \"M\"");
    profile.lastName = QStringLiteral("Stra\u00dfe \U0001F600");
    profile.email = QStringLiteral("a@b.example");
    profile.phone = QStringLiteral("+1 555");
    profile.dateOfBirth = PointInTime{-978307200.0};
    profile.address = {
        QStringLiteral("1 Road"), QStringLiteral("Town"), QStringLiteral("State"), QStringLiteral("0123"),
        QStringLiteral("Land")};
    profile.organization = QStringLiteral("Org");
    profile.jobTitle = QStringLiteral("Job");
    profile.signatureImageData = QByteArray("\x89PNG\x00\xff", 6);
    profile.signatureCreatedDate = PointInTime{1.5};
    profile.signatureFullName = QStringLiteral("Name");
    return profile;
}

Json encoded(const UserProfile& profile)
{
    return parseJson(encodeUserProfile(profile));
}

std::set<std::string> keysOf(const Json& value)
{
    std::set<std::string> keys;
    for (const auto& [key, member] : value.items())
        keys.insert(key);
    return keys;
}

std::string decodingErrorOf(const Json& value)
{
    try {
        decodeUserProfile(toJsonText(value));
    } catch (const DecodingError& error) {
        return error.what();
    }
    return "no error";
}

TEST(UserProfileJsonTest, WritesEveryMemberUnderItsName)
{
    const Json value = encoded(fullProfile());
    EXPECT_EQ(
        keysOf(value),
        (std::set<std::string>{
            "firstName", "lastName", "email", "phone", "dateOfBirth", "address", "organization", "jobTitle",
            "signatureImageData", "signatureCreatedDate", "signatureFullName"}));
    EXPECT_EQ(
        keysOf(value["address"]),
        (std::set<std::string>{"street", "city", "state", "postalCode", "country"}));
    EXPECT_EQ(value["dateOfBirth"].get<double>(), -978307200.0);
    EXPECT_EQ(value["signatureCreatedDate"].get<double>(), 1.5);
    EXPECT_EQ(value["signatureImageData"].get<std::string>(), "iVBORwD/");
    EXPECT_EQ(value["address"]["postalCode"].get<std::string>(), "0123");
}

TEST(UserProfileJsonTest, WritesOptionalMembersOnlyWhenPresent)
{
    const Json value = encoded(UserProfile());
    EXPECT_EQ(value.size(), 8U);
    EXPECT_FALSE(value.contains("dateOfBirth"));
    EXPECT_FALSE(value.contains("signatureImageData"));
    EXPECT_FALSE(value.contains("signatureCreatedDate"));
}

TEST(UserProfileJsonTest, ReadsBackWhatItWrote)
{
    EXPECT_EQ(decodeUserProfile(encodeUserProfile(fullProfile())), fullProfile());
    EXPECT_EQ(decodeUserProfile(encodeUserProfile(UserProfile())), UserProfile());
    UserProfile blank;
    blank.signatureImageData = QByteArray("");
    EXPECT_EQ(decodeUserProfile(encodeUserProfile(blank)), blank) << "no bytes are not the same as none";
}

TEST(UserProfileJsonTest, KeepsEveryDigitOfATime)
{
    Json value = encoded(fullProfile());
    value["signatureCreatedDate"] = 727012800.1234567;
    const UserProfile profile = decodeUserProfile(toJsonText(value));
    EXPECT_EQ(encoded(profile)["signatureCreatedDate"].get<double>(), 727012800.1234567);
}

TEST(UserProfileJsonTest, RequiresEveryMemberThatIsNotOptional)
{
    const Json whole = encoded(fullProfile());
    const std::set<std::string> optional{"dateOfBirth", "signatureImageData", "signatureCreatedDate"};
    for (const std::string& key : keysOf(whole)) {
        Json value = whole;
        value.erase(key);
        if (optional.contains(key))
            EXPECT_EQ(decodingErrorOf(value), "no error");
        else
            EXPECT_THAT(decodingErrorOf(value), HasSubstr('"' + key + '"'));
    }
    for (const std::string& key : keysOf(whole["address"])) {
        Json value = whole;
        value["address"].erase(key);
        EXPECT_THAT(decodingErrorOf(value), HasSubstr('"' + key + '"'));
    }
}

TEST(UserProfileJsonTest, RefusesWrongTypesAndNamesTheKey)
{
    const auto errorWith = [](const char* key, const Json& member) {
        Json value = encoded(fullProfile());
        value[key] = member;
        return decodingErrorOf(value);
    };
    EXPECT_THAT(errorWith("firstName", 1), HasSubstr("firstName"));
    EXPECT_THAT(errorWith("lastName", nullptr), HasSubstr("lastName"));
    EXPECT_THAT(errorWith("dateOfBirth", true), HasSubstr("dateOfBirth"));
    EXPECT_THAT(errorWith("dateOfBirth", "1970-01-01"), HasSubstr("dateOfBirth"));
    EXPECT_THAT(errorWith("address", "1 Road"), HasSubstr("address"));
    EXPECT_THAT(errorWith("address", nullptr), HasSubstr("address"));
    EXPECT_THAT(errorWith("signatureImageData", "no base64!"), HasSubstr("signatureImageData"));
    EXPECT_THAT(errorWith("signatureImageData", Json::array({1, 2})), HasSubstr("signatureImageData"));
    EXPECT_EQ(errorWith("signatureImageData", nullptr), "no error");
    EXPECT_EQ(errorWith("somethingNew", 1), "no error");
}

TEST(UserProfileJsonTest, RefusesTextThatIsNoObject)
{
    for (const char* text : {"", "{", "[]", "null", "\"\"", "{\"firstName\":\"a\"} x", "\xff"})
        EXPECT_THROW(decodeUserProfile(text), DecodingError) << text;
}

} // namespace
} // namespace quillo
