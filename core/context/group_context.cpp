// SPDX-License-Identifier: Apache-2.0
#include <core/context/context_table.h>
#include <core/context/group_context.h>

#include <algorithm>
#include <numeric>

namespace core {

void GroupContext::addContext(IContext_* context) {
    if (context == nullptr)
        return;
    Members members = members_;
    members.emplace_back(context);
    replaceMembers(std::move(members));
}

void GroupContext::removeContext(IContext_* context) {
    changeContext(context, nullptr);
}

bool GroupContext::changeContext(IContext_* context, IContext_* replacement) {
    Members members = members_;
    const auto place = std::ranges::find(members, context, [](const auto& member) { return member.get(); });
    if (place == members.end())
        return false;
    if (replacement != nullptr)
        *place = InterfacePtr<IContext_>(replacement);
    else
        members.erase(place);
    replaceMembers(std::move(members));
    return true;
}

void GroupContext::replaceMembers(Members members) {
    membersChange(members);
    members_.swap(members); // those that leave are let go of when the group is whole again
}

std::optional<GroupContext::Place> GroupContext::findContextByPropPos(int prop) const {
    if (prop < 0)
        return std::nullopt;
    for (const auto& member : members_) {
        const int count = member->getNProps();
        if (prop < count)
            return Place{member.get(), prop};
        prop -= count;
    }
    return std::nullopt;
}

std::optional<GroupContext::Place> GroupContext::findContextByMethodPos(int method) const {
    if (method < 0)
        return std::nullopt;
    for (std::size_t i = 0; i < members_.size(); ++i) {
        const int count = methodsOf(i);
        if (method < count)
            return Place{members_[i].get(), method};
        method -= count;
    }
    return std::nullopt;
}

int GroupContext::getNProps() const {
    int count = 0;
    for (const auto& member : members_)
        count += member->getNProps();
    return count;
}

const wchar* GroupContext::getPropName(int prop, int alias) const {
    const auto place = findContextByPropPos(prop);
    return place ? place->context->getPropName(place->index, alias) : nullptr;
}

bool GroupContext::isPropReadable(int prop) const {
    const auto place = findContextByPropPos(prop);
    return place && place->context->isPropReadable(place->index);
}

bool GroupContext::isPropWritable(int prop) const {
    const auto place = findContextByPropPos(prop);
    return place && place->context->isPropWritable(place->index);
}

int GroupContext::findProp(const wchar* name) const {
    int before = 0;
    for (const auto& member : members_) {
        if (const int prop = member->findProp(name); prop >= 0)
            return before + prop;
        before += member->getNProps();
    }
    return -1;
}

int GroupContext::getNMethods() const {
    int count = 0;
    for (std::size_t i = 0; i < members_.size(); ++i)
        count += methodsOf(i);
    return count;
}

const wchar* GroupContext::getMethodName(int method, int alias) const {
    const auto place = findContextByMethodPos(method);
    return place ? place->context->getMethodName(place->index, alias) : nullptr;
}

int GroupContext::getNParams(int method) const {
    const auto place = findContextByMethodPos(method);
    return place ? place->context->getNParams(place->index) : 0;
}

bool GroupContext::isParamIn(int method, int param) const {
    const auto place = findContextByMethodPos(method);
    return !place || place->context->isParamIn(place->index, param);
}

bool GroupContext::isParamOut(int method, int param) const {
    const auto place = findContextByMethodPos(method);
    return place && place->context->isParamOut(place->index, param);
}

bool GroupContext::getParamDefValue(int method, int param, GenericValue* out) const {
    const auto place = findContextByMethodPos(method);
    return place && place->context->getParamDefValue(place->index, param, out);
}

bool GroupContext::hasRetVal(int method) const {
    const auto place = findContextByMethodPos(method);
    return place && place->context->hasRetVal(place->index);
}

int GroupContext::findMethod(const wchar* name) const {
    int before = 0;
    for (std::size_t i = 0; i < members_.size(); ++i) {
        if (const int method = members_[i]->findMethod(name); method >= 0)
            return before + method;
        before += methodsOf(i);
    }
    return -1;
}

InterfacePtr<IContextDef> GroupContext::getIContextDef() {
    return InterfacePtr<IContextDef>(static_cast<IContextDef*>(this));
}

namespace {

/// The member with a reference for the call: what it does may be to leave the group.
InterfacePtr<IContext_> called(const GroupContext::Place& place) {
    return place.context;
}

} // namespace

void GroupContext::getPropVal(int prop, GenericValue& out) {
    const auto place = findContextByPropPos(prop);
    if (!place)
        detail::bad_property(prop);
    called(*place)->getPropVal(place->index, out);
}

void GroupContext::setPropVal(int prop, const GenericValue& value) {
    const auto place = findContextByPropPos(prop);
    if (!place)
        detail::bad_property(prop);
    called(*place)->setPropVal(place->index, value);
}

void GroupContext::call(int method, GenericValue* result, std::vector<GenericValue>* params) {
    const auto place = findContextByMethodPos(method);
    if (!place)
        detail::bad_method(method);
    called(*place)->call(place->index, result, params);
}

void StableGroupContext::membersChange(const Members& members) {
    std::vector<int> counts;
    counts.reserve(members.size());
    for (const auto& member : members)
        counts.push_back(member->getNMethods());
    methods_ = std::accumulate(counts.begin(), counts.end(), 0);
    counts_.swap(counts);
}

} // namespace core
