#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "Judge.h"
#include "Terminal.h"

/// Random days: one seed drives the hand, the host, the faults, the kills and the clock, and a judge that was
/// written from the rules says after each step what must be on the page.
namespace days {
namespace {

/// The rules that are not kept yet. Each has to be seen broken in a run: one that is kept comes off this
/// list.
constexpr Rule kNotYetKept[] = {Rule::Count};

constexpr int kActionsOfDay = 120;
constexpr int kUsualActions = 2000;
constexpr unsigned kUsualSeed = 20261121;

/// How often the hand does what, in the order of the taps.
constexpr double kWeights[] = {
    // The menu.
    12, 4, 4, 2, 1, 0.1, 2.5, 0.7, 0.4, 0.3, 0.5,
    // The lists.
    8, 4, 3, 3, 3, 4, 1.5, 3, 4, 1.5,
    // The sales slip, the container slip.
    6, 2, 2, 1, 1.5, 5, 4, 1, 1, 1, 5,
    // The collection, the card, the simple payment.
    0.6, 0.4, 0.4, 0.4, 2, 1, 4, 3, 3, 0.5, 6, 6, 3, 3, 3,
    // 이전.
    1.5};
static_assert(std::size(kWeights) == std::size_t(Tap::Count));

struct Story {
    std::vector<Action> actions;
    std::map<Rule, std::string> findings;  ///< The first of each rule.
    std::vector<std::string> words;        ///< Each step that meant something.
};

class Days : public testing::Test {
  protected:
    /// Plays a day: what `next` gives until it gives nothing. With `sought` it ends as soon as that is
    /// broken.
    Story play(const std::function<std::optional<Action>(const Terminal&)>& next, Rule sought = Rule::Count) {
        Story story;
        Judge judge(Terminal::vatModes());
        Page page;
        std::string found;
        terminal_.begin([&](const Event& event) {
            Page after = terminal_.page();
            for (const Finding& finding : judge.judge(page, event, after)) {
                story.findings.try_emplace(finding.rule, finding.what);
                found += std::string("\n      ! ") + words(finding.rule) + ": " + finding.what;
            }
            page = std::move(after);
        });
        page = terminal_.page();
        while (const auto action = next(terminal_)) {
            story.actions.push_back(*action);
            std::string said = terminal_.tap(*action);
            if (!said.empty()) story.words.push_back(std::move(said) + std::exchange(found, {}));
            if (story.findings.contains(sought)) break;
        }
        return story;
    }

    Story random(unsigned seed, int count) {
        std::mt19937 engine(seed);
        return play([&, left = count](const Terminal& terminal) mutable -> std::optional<Action> {
            if (left-- == 0) return std::nullopt;
            std::array<double, std::size(kWeights)> weights;
            for (std::size_t i = 0; i < weights.size(); ++i)
                weights[i] = terminal.can(Tap(i)) ? kWeights[i] : 0;
            // Drawn by hand: the library's distributions differ between its versions.
            double total = 0;
            for (const double weight : weights) total += weight;
            double at = double(engine()) / 4294967296.0 * total;
            std::size_t tap = 0;
            while (tap + 1 < weights.size() && (at -= weights[tap]) >= 0) ++tap;
            const unsigned pick = engine();
            return Action{Tap(tap), pick % 9973, unsigned(engine()) % 9967};
        });
    }

    Story replay(const std::vector<Action>& actions, Rule sought) {
        return play(
            [&, at = std::size_t(0)](const Terminal&) mutable -> std::optional<Action> {
                return at < actions.size() ? std::optional(actions[at++]) : std::nullopt;
            },
            sought);
    }

    /// The shortest list of steps that still breaks the rule: ever smaller pieces are left out, in the end
    /// any two; then every step is made its simplest.
    Story shrink(std::vector<Action> actions, Rule rule) {
        const auto take = [&](std::vector<Action> fewer) {
            Story story = replay(fewer, rule);
            if (!story.findings.contains(rule)) return false;
            actions = std::move(story.actions);
            return true;
        };
        const auto without = [&](std::size_t from, std::size_t count) {
            std::vector<Action> fewer = actions;
            const auto begin = fewer.begin() + std::ptrdiff_t(from);
            fewer.erase(begin, begin + std::ptrdiff_t(std::min(count, fewer.size() - from)));
            return fewer;
        };
        const auto leaveOut = [&](std::size_t piece) {
            for (bool isShorter = true; piece > 1 || isShorter; piece = std::max<std::size_t>(1, piece / 2)) {
                isShorter = false;
                for (std::size_t from = 0; from < actions.size();) {
                    const bool isLeftOut = take(without(from, piece));
                    isShorter |= isLeftOut;
                    from += isLeftOut ? 0 : piece;
                }
            }
        };
        take(actions);
        leaveOut(actions.size() / 2);
        for (std::size_t one = 0; one < actions.size(); ++one) {
            // A way back leaves more out than the way on.
            auto other = actions;
            other[one].tap = Tap::Back;
            take(other);
            for (std::size_t second = actions.size(); --second > one;) {
                auto fewer = without(second, 1);
                fewer.erase(fewer.begin() + std::ptrdiff_t(one));
                if (take(fewer)) second = actions.size();
            }
        }
        leaveOut(1);
        for (std::size_t at = 0; at < actions.size(); ++at) {
            for (unsigned Action::*const choice : {&Action::pick, &Action::amount}) {
                for (const unsigned simple : {0U, 1U, 2U}) {
                    auto simpler = actions;
                    simpler[at].*choice = simple;
                    if (actions[at].*choice <= simple || take(simpler)) break;
                }
            }
        }
        leaveOut(1);
        return replay(actions, rule);
    }

    static int number(const char* variable, int usual) {
        const char* const value = std::getenv(variable);
        return value != nullptr ? std::atoi(value) : usual;
    }

    static bool isListed(Rule rule) { return std::ranges::find(kNotYetKept, rule) != std::end(kNotYetKept); }

    /// The shortest day of each rule that was broken. A rule that is not listed fails.
    void tell(const std::map<Rule, std::vector<Action>>& broken, bool tellsListed) {
        for (const auto& [rule, actions] : broken) {
            if (isListed(rule) && !tellsListed) continue;
            const Story shortest = shrink(actions, rule);
            std::string day = std::string(isListed(rule) ? "(not yet kept) " : "") + words(rule) + "\n";
            for (const std::string& step : shortest.words) day += "    " + step + "\n";
            std::printf("%s\n", day.c_str());
            if (!isListed(rule)) ADD_FAILURE() << words(rule) << ": " << shortest.findings.at(rule);
        }
        for (const Rule rule : kNotYetKept) {
            if (rule == Rule::Count) continue;
            EXPECT_TRUE(broken.contains(rule)) << "is kept, so it comes off the list: " << words(rule);
        }
    }

    Terminal terminal_;
};

TEST_F(Days, AddUp) {
    const unsigned seed = unsigned(number("ROVANA_TEST_SEED", kUsualSeed));
    const int asked = number("ROVANA_TORTURE_RUNS", kUsualActions);
    std::printf("ROVANA_TEST_SEED=%u\n", seed);
    std::map<Rule, std::vector<Action>> broken;
    std::map<Rule, int> often;
    const auto begun = std::chrono::steady_clock::now();
    int done = 0;
    int dayCount = 0;
    for (unsigned day = 0; done < asked; ++day, ++dayCount) {
        Story story = random(seed + day, std::min(kActionsOfDay, asked - done));
        done += int(story.actions.size());
        for (const auto& [rule, what] : story.findings) {
            ++often[rule];
            broken.try_emplace(rule, story.actions);
        }
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
    std::printf("books: %d actions on %d days, %.0f a second\n", done, dayCount, done / seconds);
    for (const auto& [rule, count] : often) std::printf("%6d days  %s\n", count, words(rule));
    tell(broken, std::getenv("ROVANA_TORTURE_RUNS") != nullptr);
}

/// The same seed tells the same story.
TEST_F(Days, RepeatThemselves) {
    EXPECT_EQ(random(7, 300).words, random(7, 300).words);
}

}  // namespace
}  // namespace days
