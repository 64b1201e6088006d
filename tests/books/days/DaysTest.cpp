#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "Generator.h"
#include "Judge.h"
#include "Terminal.h"

/// Random days: one seed drives the hand, the host, the faults, the kills and the clock, and a judge that was
/// written from the rules says after each step what must be on the page. `known.days` keeps the shortest day
/// of each fault that was found.
namespace days {
namespace {

constexpr int kActionsOfDay = 120;
constexpr int kUsualActions = 30'000;
constexpr unsigned kUsualSeed = 20261121;

/// Where a rule was broken: at the same event it is the same fault.
using Fault = std::pair<Rule, Event::Kind>;

struct Story {
    std::vector<Action> actions;
    std::map<Fault, std::string> findings;  ///< The first of each.
    std::vector<std::string> words;         ///< Each step that meant something, in the form of `known.days`.
};

class Days : public testing::Test {
  protected:
    /// Plays a day: what `next` gives until it gives nothing. With `sought` it ends as soon as that is found.
    Story play(const std::function<std::optional<Action>(const Terminal&)>& next,
               std::optional<Fault> sought = std::nullopt) {
        Story story;
        Judge judge(vatModes());
        Page page;
        std::string found;
        bool isNumberTaken = false;
        terminal_.begin([&](const Event& event) {
            Page after = terminal_.page();
            for (const Finding& finding : judge.judge(page, event, after)) {
                story.findings.try_emplace({finding.rule, event.kind}, finding.what);
                isNumberTaken |= finding.rule == Rule::TakenNumber;
                found += std::string("\n#   ! ") + words(finding.rule) + ": " + finding.what;
            }
            page = std::move(after);
        });
        page = terminal_.page();
        while (const auto action = next(terminal_)) {
            story.actions.push_back(*action);
            const std::string said = terminal_.tap(*action);
            if (said.empty()) continue;
            std::ostringstream line;
            line << name(action->tap) << ' ' << action->pick << ' ' << action->amount << " | " << said;
            story.words.push_back(line.str() + std::exchange(found, {}));
            if (sought && story.findings.contains(*sought)) break;
            // Nobody can say what belongs to whom after this.
            if (isNumberTaken) break;
        }
        return story;
    }

    Story random(unsigned seed, int count) {
        return play([generator = Generator(seed),
                     left = count](const Terminal& terminal) mutable -> std::optional<Action> {
            return left-- > 0 ? std::optional(generator.next(terminal)) : std::nullopt;
        });
    }

    Story replay(const std::vector<Action>& actions, std::optional<Fault> sought = std::nullopt) {
        return play(
            [&, at = std::size_t(0)](const Terminal&) mutable -> std::optional<Action> {
                return at < actions.size() ? std::optional(actions[at++]) : std::nullopt;
            },
            sought);
    }

    Terminal terminal_;
};

/// Looks for the shortest day with a fault.
class Shrink {
  public:
    using Replay = std::function<Story(const std::vector<Action>&)>;

    Shrink(std::vector<Action> actions, Fault fault, Replay replay)
        : actions_(std::move(actions)), fault_(fault), replay_(std::move(replay)) {
        take(actions_);
        leaveOut(actions_.size() / 2);
        leaveOutTwo();
        leaveOut(1);
        simplify();
        leaveOut(1);
    }
    Story story() const { return replay_(actions_); }

  private:
    bool take(const std::vector<Action>& fewer) {
        Story story = replay_(fewer);
        if (!story.findings.contains(fault_)) return false;
        actions_ = std::move(story.actions);
        return true;
    }

    std::vector<Action> without(std::size_t from, std::size_t count) const {
        std::vector<Action> fewer = actions_;
        const auto begin = fewer.begin() + std::ptrdiff_t(from);
        fewer.erase(begin, begin + std::ptrdiff_t(std::min(count, fewer.size() - from)));
        return fewer;
    }

    /// Ever smaller pieces.
    void leaveOut(std::size_t piece) {
        for (bool isShorter = true; piece > 1 || isShorter; piece = std::max<std::size_t>(1, piece / 2)) {
            isShorter = false;
            for (std::size_t from = 0; from < actions_.size();) {
                const bool isLeftOut = take(without(from, piece));
                isShorter |= isLeftOut;
                from += isLeftOut ? 0 : piece;
            }
        }
    }

    /// Any two, where a way back may stand for a way on.
    void leaveOutTwo() {
        for (std::size_t one = 0; one < actions_.size(); ++one) {
            auto other = actions_;
            other[one].tap = Tap::Back;
            take(other);
            for (std::size_t second = actions_.size(); --second > one;) {
                auto fewer = without(second, 1);
                fewer.erase(fewer.begin() + std::ptrdiff_t(one));
                if (take(fewer)) second = actions_.size();
            }
        }
    }

    void simplify() {
        for (std::size_t at = 0; at < actions_.size(); ++at) {
            for (unsigned Action::*const choice : {&Action::pick, &Action::amount}) {
                for (const unsigned simple : {0U, 1U, 2U}) {
                    auto simpler = actions_;
                    simpler[at].*choice = simple;
                    if (actions_[at].*choice <= simple || take(simpler)) break;
                }
            }
        }
    }

    std::vector<Action> actions_;
    Fault fault_;
    Replay replay_;
};

int number(const char* variable, int usual) {
    const char* const value = std::getenv(variable);
    return value != nullptr ? std::atoi(value) : usual;
}

std::string joined(const Story& story) {
    std::string day;
    for (const std::string& step : story.words) day += step + "\n";
    return day;
}

TEST_F(Days, AddUp) {
    const unsigned seed = unsigned(number("ROVANA_TEST_SEED", int(kUsualSeed)));
    const int asked = number("ROVANA_TORTURE_RUNS", kUsualActions);
    std::printf("ROVANA_TEST_SEED=%u\n", seed);
    std::map<Fault, std::vector<Action>> broken;
    std::map<Rule, std::set<unsigned>> days;
    const auto begun = std::chrono::steady_clock::now();
    int done = 0;
    unsigned day = 0;
    for (; done < asked; ++day) {
        Story story = random(seed + day, std::min(kActionsOfDay, asked - done));
        done += int(story.actions.size());
        for (const auto& [fault, what] : story.findings) {
            days[fault.first].insert(day);
            broken.try_emplace(fault, story.actions);
        }
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
    std::printf("books: %d actions on %u days, %.0f a second\n", done, day, done / seconds);
    for (const auto& [rule, found] : days) std::printf("%6zu days  %s\n", found.size(), words(rule));
    for (const auto& [fault, actions] : broken) {
        const Story shortest = Shrink(actions, fault, [&](const std::vector<Action>& some) {
                                   return replay(some, fault);
                               }).story();
        std::printf("\n= %s\n%s", words(fault.first), joined(shortest).c_str());
        ADD_FAILURE() << words(fault.first) << ": " << shortest.findings.at(fault) << "\n"
                      << joined(shortest);
    }
}

using Steps = std::vector<Action>;

/// The steps of a line, separated by ";": names with their numbers, or what is named in `common`. After "|"
/// it is a remark.
Steps stepsOf(const std::string& line, const std::map<std::string, Steps>& common) {
    Steps steps;
    std::istringstream parts(line.substr(0, line.find('|')));
    for (std::string part; std::getline(parts >> std::ws, part, ';');) {
        part.erase(part.find_last_not_of(' ') + 1);
        if (const auto named = common.find(part); named != common.end()) {
            steps.insert(steps.end(), named->second.begin(), named->second.end());
            continue;
        }
        int tap = 0;
        while (tap < int(Tap::Count) && !part.starts_with(name(Tap(tap)))) ++tap;
        if (tap == int(Tap::Count)) throw std::invalid_argument("no such step: " + part);
        Action action{Tap(tap), 0, 0};
        std::istringstream(part.substr(std::strlen(name(action.tap)))) >> action.pick >> action.amount;
        steps.push_back(action);
    }
    return steps;
}

/// Faults that random days have found stay mended.
TEST_F(Days, KnownOnes) {
    std::map<std::string, Steps> common;
    std::vector<Steps> known;
    std::ifstream file(ROVANA_TESTS_DIR "/books/days/known.days");
    for (std::string line; std::getline(file, line);) {
        const std::size_t colon = line.find(": ");
        const bool isDay = line.starts_with("- ");
        if (isDay || line.starts_with("= ")) known.emplace_back();
        if (line.starts_with("= ") || line.starts_with("#")) continue;
        if (colon != std::string::npos) {
            common[line.substr(0, colon)] = stepsOf(line.substr(colon + 2), common);
        } else if (!line.empty()) {
            std::ranges::copy(stepsOf(line.substr(isDay ? 2 : 0), common), std::back_inserter(known.back()));
        }
    }
    EXPECT_FALSE(known.empty());
    for (const Steps& day : known) {
        const Story story = replay(day);
        for (const auto& [fault, what] : story.findings)
            ADD_FAILURE() << words(fault.first) << ": " << what << "\n" << joined(story);
    }
}

}  // namespace
}  // namespace days
