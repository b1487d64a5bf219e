// SPDX-License-Identifier: AGPL-3.0-or-later
#include "profile/UserProfileJson.h"

#include "json/PointInTime.h"

#include <array>
#include <utility>

namespace quillo {
namespace {

template <typename Record, std::size_t count>
using TextMembers = std::array<std::pair<const char*, QString Record::*>, count>;

constexpr TextMembers<UserProfile, 7> profileTexts{{
    {"firstName", &UserProfile::firstName},
    {"lastName", &UserProfile::lastName},
    {"email", &UserProfile::email},
    {"phone", &UserProfile::phone},
    {"organization", &UserProfile::organization},
    {"jobTitle", &UserProfile::jobTitle},
    {"signatureFullName", &UserProfile::signatureFullName},
}};

constexpr TextMembers<UserProfile::Address, 5> addressTexts{{
    {"street", &UserProfile::Address::street},
    {"city", &UserProfile::Address::city},
    {"state", &UserProfile::Address::state},
    {"postalCode", &UserProfile::Address::postalCode},
    {"country", &UserProfile::Address::country},
}};

constexpr std::array<std::pair<const char*, std::optional<PointInTime> UserProfile::*>, 2> profileDates{{
    {"dateOfBirth", &UserProfile::dateOfBirth},
    {"signatureCreatedDate", &UserProfile::signatureCreatedDate},
}};

template <typename Record, std::size_t count>
Json textsToJson(const Record& record, const TextMembers<Record, count>& members)
{
    Json value = Json::object();
    for (const auto& [key, member] : members)
        value[key] = toJson(record.*member);
    return value;
}

template <typename Record, std::size_t count>
void textsFromJson(const JsonObjectReader& reader, const TextMembers<Record, count>& members, Record& record)
{
    for (const auto& [key, member] : members)
        record.*member = reader.string(key);
}

} // namespace

QByteArray encodeUserProfile(const UserProfile& profile)
{
    Json value = textsToJson(profile, profileTexts);
    value["address"] = textsToJson(profile.address, addressTexts);
    for (const auto& [key, member] : profileDates) {
        if (profile.*member)
            value[key] = (profile.*member)->seconds;
    }
    QByteArray text = toJsonText(value);
    if (profile.signatureImageData) {
        // Base64 needs no escaping, and this runs on every keystroke: past the JSON library a large signature
        // takes a quarter of the time.
        text.chop(1);
        text += ",\"signatureImageData\":\"";
        text += profile.signatureImageData->toBase64();
        text += "\"}";
    }
    return text;
}

UserProfile decodeUserProfile(const QByteArray& text)
{
    const Json value = parseJson(text);
    const JsonObjectReader reader(value, "UserProfile");
    UserProfile profile;
    textsFromJson(reader, profileTexts, profile);
    textsFromJson(JsonObjectReader(reader.object("address"), "address"), addressTexts, profile.address);
    for (const auto& [key, member] : profileDates) {
        if (const auto seconds = reader.optionalNumber(key))
            profile.*member = PointInTime{*seconds};
    }
    profile.signatureImageData = reader.optionalBase64("signatureImageData");
    return profile;
}

} // namespace quillo
