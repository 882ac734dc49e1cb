// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/foreign_members.h"

#include "bridges/com/errors.h"
#include "bridges/com/options.h"
#include "bridges/com/values.h"

namespace core::com {

int ForeignMembers::Table::find(wstring_view name) const {
    const auto found = numbers_.find(name);
    return found != numbers_.end() ? found->second : -1;
}

int ForeignMembers::Table::add(wstring_view name, DISPID id) {
    members_.push_back(std::make_unique<Member>(Member{wstring(name), id}));
    return numbers_.try_emplace(wstring(name), count() - 1).first->second;
}

const ForeignMembers::Member* ForeignMembers::Table::at(int number) const noexcept {
    return number >= 0 && number < count() ? members_[static_cast<std::size_t>(number)].get() : nullptr;
}

void ForeignMembers::requireHere() const {
    if (!isHere())
        throw_error<COMException>(messages::kWrongThread);
}

const KnownMembers& ForeignMembers::known() {
    if (!known_) {
        requireHere();
        known_ = members_of(dispatch_.get());
    }
    return *known_;
}

const KnownMember* ForeignMembers::known(const Member* member) {
    return member != nullptr ? find_member(known(), member->id) : nullptr;
}

void ForeignMembers::listKnown() {
    if (listed_)
        return;
    for (const KnownMember& member : known()) {
        Table& table = member.isProperty() ? properties_ : methods_;
        if (!member.name.empty() && table.find(member.name) < 0)
            table.add(member.name, member.id);
    }
    listed_ = true;
}

const ForeignMembers::Table& ForeignMembers::properties() {
    listKnown();
    return properties_;
}

const ForeignMembers::Table& ForeignMembers::methods() {
    listKnown();
    return methods_;
}

int ForeignMembers::find(Table& table, wstring_view name) {
    if (const int number = table.find(name); number >= 0 || !dispatch_)
        return number;
    requireHere();
    wstring asked(name);
    LPOLESTR units = to_com(asked.data());
    DISPID id = DISPID_UNKNOWN;
    const ::HRESULT result = dispatch_->GetIDsOfNames(IID_NULL, &units, 1, LOCALE_USER_DEFAULT, &id);
    return SUCCEEDED(result) && id != DISPID_UNKNOWN ? table.add(name, id) : -1;
}

int ForeignMembers::findElementMethod(wstring_view name) {
    for (const wchar* const known : {u"Get", u"Set"}) {
        if (name == known)
            return methods_.add(name, DISPID_VALUE);
    }
    return -1;
}

const ForeignMembers::Member& ForeignMembers::property(int number) const {
    const Member* const member = properties_.at(number);
    if (member == nullptr)
        throw_error<COMException>(messages::kNoMember, {u"?"});
    return *member;
}

const ForeignMembers::Member& ForeignMembers::method(int number) const {
    const Member* const member = methods_.at(number);
    if (member == nullptr)
        throw_error<COMException>(messages::kNoMember, {u"?"});
    return *member;
}

namespace {

/// The arguments of a call that goes out, in the order of automation: the last one first.
class Outgoing {
  public:
    Outgoing(std::span<const GenericValue> arguments, const KnownMember* known)
        : passed_(arguments.size()), variables_(arguments.size()) {
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const std::size_t place = arguments.size() - 1 - i;
            const bool back = known != nullptr && i < known->params.size() && known->params[i].out;
            if (!back) {
                to_variant(arguments[i], passed_[place], for_arguments);
                continue;
            }
            const VARTYPE wanted = known->params[i].type & VT_TYPEMASK;
            const bool typed = wanted != VT_USERDEFINED && wanted != VT_EMPTY && wanted != VT_VARIANT;
            if (typed && arguments[i].isUndefined())
                V_VT(&variables_[place]) = wanted; // has no value yet
            else if (typed)
                to_typed_variant(arguments[i], wanted, variables_[place], for_arguments);
            else
                to_variant(arguments[i], variables_[place], for_arguments);
            V_VT(&passed_[place]) = static_cast<VARTYPE>((typed ? wanted : VARTYPE{VT_VARIANT}) | VT_BYREF);
            V_BYREF(&passed_[place]) = typed ? static_cast<void*>(&V_I8(&variables_[place]))
                                             : static_cast<VARIANT*>(&variables_[place]);
        }
    }

    [[nodiscard]] DISPPARAMS params() noexcept {
        return {passed_.data(), nullptr, static_cast<UINT>(passed_.size()), 0};
    }
    void passBack(std::span<GenericValue> arguments) const {
        for (std::size_t place = 0; place < passed_.size(); ++place) {
            if ((V_VT(&passed_[place]) & VT_BYREF) != 0)
                arguments[passed_.size() - 1 - place] = from_variant(variables_[place]);
        }
    }

  private:
    std::vector<Variant> passed_;
    std::vector<Variant> variables_;
};

} // namespace

GenericValue ForeignMembers::invoke(const Member& member, WORD flags, std::span<GenericValue> arguments) {
    requireHere();
    if (!dispatch_)
        throw_error<COMException>(messages::kNoMember, {member.name});
    Outgoing outgoing(arguments, flags == DISPATCH_PROPERTYPUT ? nullptr : known(&member));
    DISPPARAMS given = outgoing.params();
    DISPID newValue = DISPID_PROPERTYPUT;
    if (flags == DISPATCH_PROPERTYPUT) {
        given.rgdispidNamedArgs = &newValue;
        given.cNamedArgs = 1;
    }
    SetErrorInfo(0, nullptr); // what an earlier call left does not explain this one
    Variant result;
    EXCEPINFO info{};
    UINT wrong = 0;
    const auto call = [&](WORD how) {
        return dispatch_->Invoke(member.id, IID_NULL, LOCALE_USER_DEFAULT, how, &given,
                                 flags == DISPATCH_PROPERTYPUT ? nullptr : &result, &info, &wrong);
    };
    ::HRESULT answer = call(flags);
    if (flags == DISPATCH_PROPERTYPUT && FAILED(answer) && answer != DISP_E_EXCEPTION &&
        V_VT(given.rgvarg) == VT_DISPATCH)
        answer = call(DISPATCH_PROPERTYPUTREF); // a property that holds objects
    if (FAILED(answer))
        throw_failed_call(member.name, answer, &info);
    outgoing.passBack(arguments);
    return from_variant(result);
}

} // namespace core::com
