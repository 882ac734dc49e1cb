// SPDX-License-Identifier: Apache-2.0
// Whatever scripts can reach is explained in one sentence, in both languages, and the pages of
// docs/reference/ say what the library says. It is asked as the program of its own, which has no classes of
// tests.
#include "tests/support/environment.h"
#include "tests/support/folder_test.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace host {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

std::string output_of(const std::string& arguments) {
    return support::output_of(CORE_TEST_PROGRAM " describe " + arguments);
}

/// Collects the ids of the sentences that there must be, and those that are not there.
class Sentences {
  public:
    void ask(const std::string& id, const json& what) {
        asked_.insert(id);
        if (!what.contains("description"))
            missing_ += "\n    " + id;
    }
    void askMembers(const std::string& owner, const json& all) {
        for (const json& member : all)
            ask(owner + '_' + member["name"]["en"].get<std::string>(), member);
    }
    void askType(const std::string& name) {
        const json type = json::parse(output_of("--json " + name));
        const std::string id = "DOC_" + name;
        ask(id, type);
        if (type.contains("constructor")) {
            ask(id + "_New", type["constructor"]);
            if (type["constructor"].value("most", -1) != 0)
                askNames(id + "_New_Parameters", type["constructor"]);
        }
        // The values of an enumeration have a presentation; a colour of a table is what its name says.
        if (!type["enumeration"].get<bool>() && !name.ends_with("Colors"))
            askMembers(id, type["properties"]);
        askMembers(id, type["methods"]);
        askMembers(id, type["events"]);
    }

    /// The names of all parameters in both languages, unless there are any number.
    void askNames(const std::string& id, const json& constructor) {
        asked_.insert(id);
        for (const std::string language : {"en", "ru"}) {
            const std::string names = constructor.value("parameters", json::object()).value(language, "");
            const auto count = std::ranges::count(names, ',') + 1;
            if (names.empty() ||
                (names.find("…") == std::string::npos && count != constructor.value("most", -1)))
                missing_ += "\n    " + id + " (" + language + ')';
        }
    }

    [[nodiscard]] const std::set<std::string>& asked() const noexcept { return asked_; }
    [[nodiscard]] const std::string& missing() const noexcept { return missing_; }

  private:
    std::set<std::string> asked_;
    std::string missing_;
};

TEST(ReferenceTest, EverythingHasASentence) {
    Sentences sentences;
    for (const json& type : json::parse(output_of("--json")))
        sentences.askType(type["name"]["en"]);
    sentences.askMembers("DOC_Functions", json::parse(output_of("--json --functions")));
    for (const std::string property :
         {"Arguments", "Containers", "StyleColors", "WebColors", "WindowsColors"})
        sentences.ask("DOC_Functions_" + property, json::parse(output_of("--json " + property)));
    ASSERT_GT(sentences.asked().size(), 300U);
    EXPECT_EQ(sentences.missing(), "") << "one sentence each, in core/resources/root.txt and ru.txt, says "
                                          "what these are; then scripts/reference writes "
                                          "docs/reference/ again";

    const std::string texts = text_of(fs::path(CORE_SOURCE_DIR) / "core/resources/root.txt");
    const std::regex id(R"(\bDOC_\w+)");
    for (std::sregex_iterator found(texts.begin(), texts.end(), id), end; found != end; ++found)
        EXPECT_TRUE(sentences.asked().contains(found->str()))
            << found->str() << " explains something that is gone";
}

std::map<std::string, std::string> pages_in(const fs::path& folder) {
    std::map<std::string, std::string> pages;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file())
            pages[fs::relative(entry.path(), folder).string()] = text_of(entry.path());
    }
    return pages;
}

class ReferencePagesTest : public FolderTest {};

TEST_F(ReferencePagesTest, SayWhatTheLibrarySays) {
    EXPECT_EQ(output_of("--reference \"" + path("new") + '"'), "");
    const auto written = pages_in(path("new"));
    const auto kept = pages_in(fs::path(CORE_SOURCE_DIR) / "docs/reference");
    for (const auto& [page, text] : written) {
        const auto same = kept.find(page);
        EXPECT_TRUE(same != kept.end() && same->second == text)
            << "docs/reference/" << page << " is not what the library says now; run scripts/reference";
    }
    for (const auto& [page, text] : kept)
        EXPECT_TRUE(written.contains(page))
            << "docs/reference/" << page << " has no type any more; run scripts/reference";
    EXPECT_EQ(std::ranges::count_if(written, [](const auto& page) { return page.first.starts_with("ru"); }) *
                  2,
              static_cast<std::ptrdiff_t>(written.size()));
}

TEST_F(ReferencePagesTest, LeadToEachOther) {
    const auto kept = pages_in(fs::path(CORE_SOURCE_DIR) / "docs/reference");
    const std::regex link(R"(\]\(([^)#]+)\))");
    std::size_t count = 0;
    for (const auto& [page, text] : kept) {
        for (std::sregex_iterator found(text.begin(), text.end(), link), end; found != end;
             ++found, ++count) {
            const fs::path target = (fs::path(page).parent_path() / (*found)[1].str()).lexically_normal();
            EXPECT_TRUE(kept.contains(target.string())) << page << " leads to " << target;
        }
    }
    EXPECT_GT(count, 500U);
}

} // namespace
} // namespace host
