#include <gtest/gtest.h>

#include <iterator>
#include <set>
#include <sstream>

#include "tests/unit/tools/PlanOf.h"
#include "tools/Grammar.h"

namespace krt9ctl {
namespace {

// Words as a shell would split them, as far as the examples need it.
std::vector<std::string> SplitLikeAShell(std::string_view line) {
    std::vector<std::string> words(1);
    char quote = 0;
    for (const char character : line) {
        if (quote != 0 ? character == quote : character == '"' || character == '\'') {
            quote = quote != 0 ? '\0' : character;
        } else if (character == ' ' && quote == 0) {
            words.emplace_back();
        } else {
            words.back() += character;
        }
    }
    return words;
}

std::set<std::string> CodesOf(std::string_view requests) {
    std::istringstream words{std::string(requests)};
    return {std::istream_iterator<std::string>(words), {}};
}

TEST(Grammar, HasAVerbForEveryRequestOfTheDriver) {
    std::set<std::string> covered;
    for (const Verb& verb : TheGrammar().verbs) {
        covered.merge(CodesOf(verb.requests));
    }
    for (const RequestRow& row : RequestTable()) {
        EXPECT_TRUE(covered.contains(FormatCode(row.code))) << FormatCode(row.code);
    }
    EXPECT_EQ(covered.size(), RequestTable().size());
}

TEST(Grammar, EveryExampleIsACommandLineOfItsVerb) {
    for (const Verb& verb : TheGrammar().verbs) {
        auto words = SplitLikeAShell(verb.example);
        ASSERT_EQ(words.front(), "krt9ctl") << verb.name;
        words.erase(words.begin());
        const auto parsed = ParseCommandLine(TheGrammar(), words);
        const auto& invocation = std::get<Invocation>(parsed);
        EXPECT_EQ(invocation.verb, &verb) << verb.example;
        EXPECT_NO_THROW(Arguments(verb, invocation.given)) << verb.example;
    }
}

TEST(Grammar, EveryVerbSendsTheRequestsItsRowNames) {
    for (const Verb& verb : TheGrammar().verbs) {
        if (verb.requests.empty()) {
            continue;
        }
        auto words = SplitLikeAShell(verb.example);
        words.erase(words.begin());
        std::set<std::string> sent;
        for (const Request& request : PlanOf(words)) {
            sent.insert(FormatCode(request.code));
        }
        if (const auto expectation = ErrandFor(words).expectation) {
            sent.insert(FormatCode(expectation->question.code));
        }
        EXPECT_EQ(sent, CodesOf(verb.requests)) << verb.name;
    }
}

TEST(Grammar, EveryVerbHasItsOwnNameAndASummary) {
    std::set<std::string_view> names;
    for (const Verb& verb : TheGrammar().verbs) {
        EXPECT_TRUE(names.insert(verb.name).second) << verb.name;
        EXPECT_FALSE(verb.summary.empty()) << verb.name;
        for (const Parameter& parameter : verb.parameters) {
            EXPECT_FALSE(parameter.help.empty()) << verb.name << ' ' << parameter.name;
        }
    }
}

}  // namespace
}  // namespace krt9ctl
