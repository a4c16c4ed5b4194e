#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

struct Corpus {
    const char* name;
    void (*properties)(std::string_view input);
};

class EveryInputOf : public testing::TestWithParam<Corpus> {};

TEST_P(EveryInputOf, HasTheProperties) {
    int count = 0;
    for (const auto& file :
         std::filesystem::directory_iterator(ORVO_CORPUS + std::string("/") + GetParam().name)) {
        std::ifstream in(file.path(), std::ios::binary);
        const std::string input{std::istreambuf_iterator<char>(in), {}};
        EXPECT_NO_THROW(GetParam().properties(input)) << file.path();
        ++count;
    }
    EXPECT_GT(count, 0);
}

INSTANTIATE_TEST_SUITE_P(
    All, EveryInputOf,
    testing::Values(Corpus{"access_rules", access_rules_properties},
                    Corpus{"cookies", cookies_properties},
                    Corpus{"distinguished_name", distinguished_name_properties},
                    Corpus{"filter", filter_properties}, Corpus{"forwarded", forwarded_properties},
                    Corpus{"generalized_time", generalized_time_properties},
                    Corpus{"http_request", http_request_properties},
                    Corpus{"kept_bytes", kept_bytes_properties}, Corpus{"ldif", ldif_properties},
                    Corpus{"multipart", multipart_properties}, Corpus{"page", page_properties},
                    Corpus{"proxy_header", proxy_header_properties},
                    Corpus{"schema_file", schema_file_properties},
                    Corpus{"script", script_properties},
                    Corpus{"store_reply", store_reply_properties},
                    Corpus{"store_secrets", store_secrets_properties}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace orvo::fuzz
