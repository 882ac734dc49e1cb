// SPDX-License-Identifier: Apache-2.0
// Each member of each type, from the engines of others, by both its names: it does what a call without a
// bridge does. What there is comes from the live definitions, so that a new type cannot be forgotten.
#include "tests/bridges/com/engine_site.h"
#include "tests/bridges/com/samples.h"
#include "tests/support/new_folder.h"

#include <core/strings/term.h>
#include <core/values/type_service.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <utility>

namespace core::com {
namespace {

/// What a call comes to.
struct Outcome {
    std::string error{};  ///< the message id of the failure; empty without one
    std::string result{}; ///< what was returned
    std::string state{};  ///< the object afterwards
    friend bool operator==(const Outcome&, const Outcome&) = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
    return out << "error: " << outcome.error << "\nresult: " << outcome.result
               << "\nstate: " << outcome.state;
}

using Picks = std::vector<std::size_t>; // of arguments_for()

/// A member of a type, and what is to be done with it.
struct Member {
    std::string type;
    int number;
    bool isMethod;
    std::string names[2]; // English, Russian
    bool returns;
};

/// A language of others.
struct Language {
    const wchar* engine;
    bool isBasic;

    /// A script that does with a new object what is to be done, and hands over what it returns.
    [[nodiscard]] std::string script(const Member& member, int alias,
                                     const std::vector<GenericValue>& arguments) const {
        const std::string make = "Maker.Make(\"" + member.type + "\")";
        const std::string& name = member.names[alias];
        std::string list;
        for (std::size_t i = 0; i < arguments.size(); ++i)
            list += (i > 0 ? ", Maker.Argument(" : "Maker.Argument(") + std::to_string(i) + ")";
        if (!isBasic) {
            const std::string target = "var X = " + make + "; ";
            if (!member.isMethod && !arguments.empty())
                return target + "X['" + name + "'] = " + list + ";";
            const std::string read = "X['" + name + "']" + (member.isMethod ? "(" + list + ")" : "");
            return target + (member.returns ? "Maker.Take(" + read + ");" : read + ";");
        }
        const std::string target = "Set X = " + make + "\n";
        if (!member.isMethod && !arguments.empty())
            return target +
                   (arguments[0].isObject() || arguments[0].kind() == ValueKind::type ? "Set " : "") + "X." +
                   name + " = " + list + "\n";
        if (!member.returns)
            return target + "X." + name + " " + list + "\n";
        return target + "Maker.Take X." + name + (member.isMethod ? "(" + list + ")" : "") + "\n";
    }
};

constexpr Language kLanguages[] = {{u"JScript", false}, {u"VBScript", true}};

/// What is not handed to engines as an object with members, and why.
const std::map<std::string, const char*> kNoObjects = {
    {"COMError", "crosses as a VT_ERROR, which engines do not take"},
    {"COMObject", "crosses as the object of others that it is"},
    {"SafeArray", "crosses as a VT_ARRAY"},
};

class ComEveryMember : public ComEngineTest {
  protected:
    ComEveryMember() : before_(std::filesystem::current_path()), folder_(support::new_folder("core_com")) {
        std::filesystem::current_path(folder_);
        maker_->making = [this](const wstring& type) {
            GenericValue sample = sample_of(type);
            if (sample.type().get() == nullptr || picks_.empty())
                return sample;
            maker_->arguments = picked(sample, picks_);
            return sample;
        };
    }
    ~ComEveryMember() override {
        std::filesystem::current_path(before_);
        std::filesystem::remove_all(folder_);
    }

    static std::vector<GenericValue> picked(const GenericValue& sample, const Picks& picks) {
        if (picks.empty())
            return {}; // asking for more may change the sample
        std::size_t dates = 0;
        const auto all = arguments_for(sample, dates);
        std::vector<GenericValue> arguments;
        for (const std::size_t pick : picks)
            arguments.push_back(all.at(pick));
        return arguments;
    }

    /// What comes out without a bridge.
    static Outcome plain(const Member& member, const Picks& picks) {
        const GenericValue sample = sample_of(from_utf8(member.type));
        const auto context = sample.query<IContext_>();
        std::vector<GenericValue> arguments = picked(sample, picks);
        Outcome outcome;
        try {
            GenericValue returned;
            if (member.isMethod)
                context->call(member.number, &returned, &arguments);
            else if (arguments.empty())
                context->getPropVal(member.number, returned);
            else
                context->setPropVal(member.number, arguments[0]);
            outcome.state = state_of(sample);
            if (member.returns) {
                Variant crossed; // not everything can
                to_variant(returned, crossed, service().forResults());
                outcome.result = state_of(returned);
            }
        } catch (const Exception& e) {
            outcome.error = e.messageId();
            outcome.state = state_of(sample);
        }
        return outcome;
    }

    /// What comes out of a script of others.
    Outcome through(Site& site, const Language& language, const Member& member, int alias,
                    const Picks& picks) {
        picks_ = picks;
        maker_->clear();
        const GenericValue sample = sample_of(from_utf8(member.type));
        const std::string script = language.script(member, alias, picked(sample, picks));
        maker_->clear();
        const std::string failure = site.run(script);
        Outcome outcome;
        outcome.state = state_of(maker_->made);
        if (failure.empty()) {
            outcome.result = member.returns ? state_of(maker_->taken) : std::string();
        } else {
            const std::size_t id = failure.rfind(' ');
            outcome.error = failure.substr(id + 1, failure.size() - id - 2); // "text [Class ID]"
            if (outcome.error.find('_') == std::string::npos)
                outcome.error = failure + " in " + script;
        }
        return outcome;
    }

    static std::vector<Member> members_of(const std::string& type, const GenericValue& sample) {
        std::vector<Member> members;
        const auto context = sample.query<IContext_>();
        for (int prop = 0; context && prop < context->getNProps(); ++prop)
            members.push_back({type,
                               prop,
                               false,
                               {to_utf8(context->getPropName(prop, kEnglish)),
                                to_utf8(context->getPropName(prop, kRussian))},
                               true});
        for (int method = 0; context && method < context->getNMethods(); ++method)
            members.push_back({type,
                               method,
                               true,
                               {to_utf8(context->getMethodName(method, kEnglish)),
                                to_utf8(context->getMethodName(method, kRussian))},
                               context->hasRetVal(method)});
        return members;
    }

    /// Arguments with which a method does something, found by trying; and some that it refuses.
    static std::vector<Picks> calls_of(const Member& member, const GenericValue& sample) {
        const auto context = sample.query<IContext_>();
        std::size_t least = 0;
        const auto most = static_cast<std::size_t>(std::min(context->getNParams(member.number), 5));
        for (std::size_t param = 0; param < most; ++param)
            least = context->getParamDefValue(member.number, static_cast<int>(param), nullptr) ? least
                                                                                               : param + 1;
        std::size_t dates = 0;
        const std::size_t count = arguments_for(sample, dates).size();
        const std::size_t tries = most == 0 ? 1 : least == 1 ? count : 120;
        std::mt19937 random(2); // the same in every run
        std::vector<Picks> refused;
        for (std::size_t attempt = 0; attempt < tries; ++attempt) {
            Picks picks(attempt < tries / 2 ? least : least + random() % (most - least + 1));
            for (std::size_t& pick : picks)
                pick = least == 1 ? attempt : random() % (random() % 2 != 0 ? kUsualArguments : dates);
            if (plain(member, picks).error.empty()) {
                refused.resize(std::min<std::size_t>(refused.size(), 1));
                refused.push_back(picks);
                return refused;
            }
            refused.push_back(picks);
        }
        refused.resize(1);
        return refused;
    }

    /// A value that changes a property, if there is one.
    static std::vector<Picks> values_of(const Member& member, const GenericValue& sample) {
        std::size_t dates = 0;
        const std::size_t count = arguments_for(sample, dates).size();
        const std::string before = state_of(sample);
        std::vector<Picks> fitting;
        for (std::size_t pick = 0; pick < count; ++pick) {
            const Outcome outcome = plain(member, {pick});
            if (outcome.error.empty() && (fitting.empty() || outcome.state != before))
                fitting = {{pick}};
            if (outcome.error.empty() && outcome.state != before)
                break;
        }
        return fitting;
    }

    /// Whether an engine hands over all arguments as they are: JScript makes objects of its own of dates.
    static bool takes(const Language& language, const GenericValue& sample, const Picks& picks) {
        const auto arguments = picked(sample, picks);
        return language.isBasic ||
               std::ranges::none_of(arguments, [](const GenericValue& one) { return one.asDate(); });
    }

    /// Compares what a script of others does with what comes out without a bridge, under both names.
    void compare(const Member& member, const GenericValue& sample, const Picks& picks) {
        const Outcome expected = plain(member, picks);
        bool& did = members_[member.type + "." + member.names[0]];
        did = did || expected.error.empty();
        for (std::size_t i = 0; i < std::size(kLanguages); ++i) {
            if (!takes(kLanguages[i], sample, picks))
                continue;
            for (const int alias : {kEnglish, kRussian}) {
                Outcome outcome = through(*sites_[i], kLanguages[i], member, alias, picks);
                if (!kLanguages[i].isBasic && expected.result.starts_with("Date "))
                    outcome.result = expected.result;
                if (expected.error.empty() && differs_by_moment(member.names[kEnglish]))
                    outcome.result = expected.result;
                EXPECT_EQ(outcome, expected)
                    << to_utf8(kLanguages[i].engine) << " " << member.type << "." << member.names[alias];
            }
        }
    }

    void compareAll(Member member, const GenericValue& sample) {
        if (member.isMethod) {
            for (const Picks& picks : calls_of(member, sample))
                compare(member, sample, picks);
            return;
        }
        const auto context = sample.query<IContext_>();
        if (context->isPropReadable(member.number))
            compare(member, sample, {});
        if (!context->isPropWritable(member.number))
            return;
        member.returns = false;
        const auto values = values_of(member, sample);
        EXPECT_FALSE(values.empty()) << member.type << "." << member.names[0];
        for (const Picks& picks : values)
            compare(member, sample, picks);
    }

    const ComPtr<IDispatch> held_ = dispatch_of(Value(maker_));
    std::unique_ptr<Site> sites_[std::size(kLanguages)];
    std::map<std::string, bool> members_; ///< whether they did what was asked

  private:
    std::filesystem::path before_;
    std::filesystem::path folder_;
    Picks picks_;
};

TEST_F(ComEveryMember, IsReadChangedAndCalledByBothNames) {
    for (std::size_t i = 0; i < std::size(kLanguages); ++i)
        sites_[i] = std::make_unique<Site>(kLanguages[i].engine, held_.get());
    for (IType* const type : require_service<ITypeValueService>().types()) {
        const std::string name = to_utf8(type->name(kEnglish));
        if (kNoObjects.contains(name) || name.starts_with("Test"))
            continue;
        const GenericValue sample = sample_of(from_utf8(name));
        for (const Member& member : members_of(name, sample))
            compareAll(member, sample);
    }
    std::string refused;
    for (const auto& [name, did] : members_)
        refused += did ? "" : name + " ";
    EXPECT_GT(members_.size(), 700U);
    EXPECT_LT(std::ranges::count(refused, ' '), 25) << refused; // whose failures are the same on both ways
}

} // namespace
} // namespace core::com
