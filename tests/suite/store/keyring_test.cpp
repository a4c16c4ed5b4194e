#include "suite/store/keyring.h"

#include <gtest/gtest.h>

#include <set>

#include "suite/configuration/ini_parser.h"
#include "tests/support/raised.h"
#include "tests/support/temp_folder.h"

namespace orvo::store {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

const std::string old_key = "AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8=\n";
const std::string new_key = "ICEiIyQlJicoKSorLC0uLzAxMjM0NTY3ODk6Ozw9Pj8=\n";
const std::string text = "a password \0 of somebody"s;

Keyring ring(const std::string& keys) { return Keyring::parse(keys, "/etc/orvo/keys"); }

TEST(Keyring, UnsealsWhatItSealedForThisContextAlone) {
    const Keyring keys = ring(old_key);
    for (const std::string& plain : {std::string(), text, std::string(100'000, 'x')}) {
        const std::string sealed = keys.seal(plain, "orvo:login:a");
        EXPECT_EQ(sealed.size(), plain.size() + 45);
        EXPECT_EQ(keys.unseal(sealed, "orvo:login:a"), plain);
        EXPECT_EQ(keys.unseal(sealed, "orvo:login:b"), std::nullopt);
        EXPECT_EQ(keys.unseal(sealed, ""), std::nullopt);
    }
}

TEST(Keyring, NoticesEveryByteThatIsChangedOrMissing) {
    const Keyring keys = ring(old_key);
    const std::string sealed = keys.seal(text, "c");
    for (std::size_t i = 0; i < sealed.size(); ++i) {
        std::string changed = sealed;
        changed[i] = static_cast<char>(changed[i] ^ 1);
        EXPECT_EQ(keys.unseal(changed, "c"), std::nullopt) << i;
        EXPECT_EQ(keys.unseal(sealed.substr(0, i), "c"), std::nullopt) << i;
    }
    EXPECT_EQ(keys.unseal(sealed + "x", "c"), std::nullopt);
}

TEST(Keyring, SealsTheSameTextDifferentlyEachTimeAndShowsNothingOfIt) {
    const Keyring keys = ring(old_key);
    std::set<std::string> sealed;
    for (int i = 0; i < 100; ++i) {
        sealed.insert(keys.seal(text, "c"));
        EXPECT_EQ(sealed.rbegin()->find("password"), std::string::npos);
    }
    EXPECT_EQ(sealed.size(), 100u);
}

TEST(Keyring, TheFirstKeySealsAndBothUnseal) {
    const Keyring before = ring(old_key), known = ring(old_key + new_key),
                  rotated = ring(new_key + old_key), after = ring(new_key);
    const std::string by_old = before.seal(text, "c"), by_new = rotated.seal(text, "c");
    EXPECT_EQ(known.unseal(by_new, "c"), text);
    EXPECT_EQ(rotated.unseal(by_old, "c"), text);
    EXPECT_EQ(rotated.unseal(known.seal(text, "c"), "c"), text);
    EXPECT_EQ(after.unseal(by_new, "c"), text);
    EXPECT_EQ(after.unseal(by_old, "c"), std::nullopt);
    EXPECT_EQ(before.unseal(by_new, "c"), std::nullopt);
}

TEST(Keyring, AFileThatOthersMayReadOrChangeIsRefused) {
    const TempFolder folder;
    const fs::path file = folder.write("keys", new_key + old_key);
    for (const auto mode : {fs::perms{0604}, fs::perms{0602}, fs::perms{0660}}) {
        fs::permissions(file, mode);
        const Failure failure = raised_by([&] { Keyring::read(file); });
        EXPECT_EQ(failure.number, configuration_error::malformed_file);
        EXPECT_EQ(to_utf8(failure.description),
                  file.string() +
                      ": others may read or change the keys of the store (chmod 640 takes that "
                      "away)");
    }
    for (const auto mode : {fs::perms{0600}, fs::perms{0640}}) {
        fs::permissions(file, mode);
        EXPECT_NO_THROW(Keyring::read(file));
    }
    EXPECT_EQ(raised_by([&] { Keyring::read(folder.path() / "none"); }).number,
              configuration_error::file_not_found);
    EXPECT_EQ(raised_by([&] { Keyring::read(folder.path()); }).number,
              configuration_error::file_not_readable);
    const fs::path loop = folder.path() / "loop";
    fs::create_symlink(loop, loop);
    expect_failure(raised_by([&] { Keyring::read(loop); }), configuration_error::file_not_readable,
                   configuration_source, loop.string() + ": it cannot be read");
    EXPECT_EQ(raised_by([&] { Keyring::read("/dev/null"); }).number,
              configuration_error::file_not_readable);
}

TEST(Keyring, WhatIsNoKeyIsRefusedAndNotShown) {
    const auto expect = [](const std::string& content, const std::string& reason) {
        const Failure failure = raised_by([&] { ring(content); });
        EXPECT_EQ(failure.number, configuration_error::malformed_file);
        EXPECT_EQ(to_utf8(failure.description), "/etc/orvo/keys: " + reason);
    };
    const std::string no_key =
        " is no key of 32 bytes in base64 (openssl rand -base64 32 writes one)";
    expect("", "there is no key in it");
    expect("\n", "there is no key in it");
    expect("secret\n", "line 1" + no_key);
    expect(old_key + "\n" + new_key, "line 2" + no_key);
    expect(old_key.substr(1), "line 1" + no_key);
    expect("AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh=8\n", "line 1" + no_key);
    expect("AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdH*8=\n", "line 1" + no_key);
    expect(old_key + new_key + old_key, "there are more than two keys");
    EXPECT_NO_THROW(ring(old_key.substr(0, 44)));
    EXPECT_NO_THROW(ring(old_key.substr(0, 44) + "\r\n" + new_key));
}

TEST(Keyring, WhatCanBeGuessedHasANameOfEachKeyThatNobodyElseCanMake) {
    const auto before = ring(old_key).names_of("jsmith"), after = ring(new_key).names_of("jsmith");
    ASSERT_EQ(before.size(), 1u);
    EXPECT_EQ(before.front().size(), 64u);
    EXPECT_EQ(ring(old_key).names_of("jsmith"), before);
    EXPECT_NE(ring(old_key).names_of("jsmitt"), before);
    EXPECT_NE(before.front(), after.front());
    EXPECT_NE(before.front(), Keyring::name_of("jsmith"));
    using Names = std::vector<std::string>;
    EXPECT_EQ(ring(old_key + new_key).names_of("jsmith"), (Names{before.front(), after.front()}));
    EXPECT_EQ(ring(new_key + old_key).names_of("jsmith"), (Names{after.front(), before.front()}));
}

TEST(Keyring, NamesOfSecretsAreTheirDigests) {
    EXPECT_EQ(Keyring::name_of("abc"),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

}  // namespace
}  // namespace orvo::store
