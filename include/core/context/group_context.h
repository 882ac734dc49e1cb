// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>
#include <core/runtime/internal_class.h>

#include <optional>
#include <vector>

namespace core {

/// Several contexts as one, in a fixed order: the properties of the first, then those of the second, and so
/// on; the same with methods. Of equal names the earlier member's is found.
///
/// Members are counted. A group must not be a member of itself, directly or through others. An edit that
/// throws leaves the members as they were. Threads: as the members.
class CORE_API GroupContext : public IContext_ {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef>;

    // modify
    /// Adds a member at the end; null is ignored.
    void addContext(IContext_* context);
    /// Removes a member; one that is not here is ignored.
    void removeContext(IContext_* context);
    /// Puts `replacement` in the place of a member; null removes the member. Returns false when `context` is
    /// not here.
    bool changeContext(IContext_* context, IContext_* replacement);

    // query
    /// The place to which a number of the group leads.
    struct Place {
        IContext_* context; ///< the member, borrowed until it leaves the group
        int index;          ///< the number within the member
    };
    /// Returns the member that has a property of the group, and its number there; nothing out of range.
    [[nodiscard]] std::optional<Place> findContextByPropPos(int prop) const;
    /// Returns the member that has a method of the group, and its number there; nothing out of range.
    [[nodiscard]] std::optional<Place> findContextByMethodPos(int method) const;

    // IContextDef
    int getNProps() const override;
    const wchar* getPropName(int prop, int alias) const override;
    bool isPropReadable(int prop) const override;
    bool isPropWritable(int prop) const override;
    int findProp(const wchar* name) const override;
    int getNMethods() const override;
    const wchar* getMethodName(int method, int alias) const override;
    int getNParams(int method) const override;
    bool isParamIn(int method, int param) const override;
    bool isParamOut(int method, int param) const override;
    bool getParamDefValue(int method, int param, GenericValue* out) const override;
    bool hasRetVal(int method) const override;
    int findMethod(const wchar* name) const override;

    // IContext_
    InterfacePtr<IContextDef> getIContextDef() override;
    void getPropVal(int prop, GenericValue& out) override;
    void setPropVal(int prop, const GenericValue& value) override;
    void call(int method, GenericValue* result, std::vector<GenericValue>* params) override;

  protected:
    GroupContext() = default;
    ~GroupContext() = default;

    /// The members in their order, counted.
    using Members = std::vector<InterfacePtr<IContext_>>;
    /// Called before every change with the members to come. What it throws prevents the change.
    virtual void membersChange(const Members& /*members*/) {}
    /// Returns how many methods a member has.
    [[nodiscard]] virtual int methodsOf(std::size_t member) const { return members_[member]->getNMethods(); }

  private:
    void replaceMembers(Members members);

    Members members_;
};

/// A group whose members never change the number of their methods: it counts them
/// once, when the members change.
class CORE_API StableGroupContext : public GroupContext {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef>;
    int getNMethods() const override { return methods_; }

  protected:
    StableGroupContext() = default;
    ~StableGroupContext() = default;

    void membersChange(const Members& members) override;
    int methodsOf(std::size_t member) const override { return counts_[member]; }

  private:
    std::vector<int> counts_;
    int methods_ = 0;
};

} // namespace core
