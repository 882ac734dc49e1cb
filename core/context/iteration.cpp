// SPDX-License-Identifier: Apache-2.0
#include <core/context/iteration.h>
#include <core/runtime/internal_class.h>

#include <utility>

namespace core {
namespace {

/// A walk over values that were gathered when it began.
class GatheredEnum : public IValueEnum {
  public:
    using Interfaces = InterfaceList<IValueEnum>;

    explicit GatheredEnum(std::vector<Value> values) noexcept : values_(std::move(values)) {}
    bool next(GenericValue& out) override {
        if (next_ == values_.size())
            return false;
        out = GenericValue(std::move(values_[next_++]));
        return true;
    }

  private:
    std::vector<Value> values_;
    std::size_t next_ = 0;
};

} // namespace

InterfacePtr<IValueEnum> create_value_enum(std::vector<Value> values) {
    return make_object<GatheredEnum>(std::move(values));
}

} // namespace core
