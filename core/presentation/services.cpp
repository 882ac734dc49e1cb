// SPDX-License-Identifier: Apache-2.0
#include <core/context/arguments.h>
#include <core/objects/enumeration.h>
#include <core/presentation/errors.h>
#include <core/presentation/services.h>
#include <core/runtime/class_entry.h>
#include <core/runtime/exception_object.h>
#include <core/runtime/process.h>
#include <core/strings/compare.h>

#include <atomic>
#include <map>
#include <mutex>
#include <shared_mutex>

namespace core {
namespace {

const SCOM_ExceptionEntry<PresentationException> kPresentationException("PresentationExceptionObject");

class LinesService : public ILinesService {
  public:
    using Interfaces = InterfaceList<ILinesService>;

    LumLine standard() const noexcept override { return {}; }
    std::span<const std::uint8_t> dashes(LineKind kind) const noexcept override {
        static constexpr std::uint8_t kDotted[] = {1, 1};
        static constexpr std::uint8_t kDashed[] = {3, 1};
        static constexpr std::uint8_t kDashDot[] = {3, 1, 1, 1};
        static constexpr std::uint8_t kDashDotDot[] = {3, 1, 1, 1, 1, 1};
        switch (kind) {
        case LineKind::dotted:
            return kDotted;
        case LineKind::dashed:
            return kDashed;
        case LineKind::dashDot:
            return kDashDot;
        case LineKind::dashDotDot:
            return kDashDotDot;
        case LineKind::none:
        case LineKind::solid:
        case LineKind::twofold:
            break;
        }
        return {};
    }
};

class BordersService : public IBordersService {
  public:
    using Interfaces = InterfaceList<IBordersService>;

    LumBorder resolve(const LumBorder& border) const override {
        if (border.kind != BorderKind::automatic)
            return border;
        const IPresentationService* const look = get_service<IPresentationService>();
        const LumBorder standard = look != nullptr ? look->style().border() : LumBorder();
        return standard.kind != BorderKind::automatic ? standard : LumBorder(LumLine{});
    }
};

struct LessNoCase {
    using is_transparent = void;
    bool operator()(wstring_view a, wstring_view b) const noexcept { return compare_nocase(a, b) < 0; }
};

class PresentationService : public IPresentationService {
  public:
    using Interfaces = InterfaceList<IPresentationService>;

    Style style() const override {
        const std::shared_lock guard(lock_);
        return style_;
    }
    void setStyle(const Style& style) override {
        Style copy = style;
        const std::lock_guard guard(lock_);
        std::swap(style_, copy);
    }

    void registerPicture(wstring_view name, const Picture& picture) override {
        if (name.empty())
            parameter_value_mismatch(0);
        if (picture.bytes().empty())
            parameter_value_mismatch(1);
        wstring key(name);
        Picture copy = picture;
        const std::lock_guard guard(lock_);
        pictures_.insert_or_assign(std::move(key), std::move(copy));
    }
    void revokePicture(wstring_view name) noexcept override {
        const std::lock_guard guard(lock_);
        if (const auto found = pictures_.find(name); found != pictures_.end())
            pictures_.erase(found);
    }
    Picture picture(wstring_view name) const override {
        const std::shared_lock guard(lock_);
        const auto found = pictures_.find(name);
        return found != pictures_.end() ? found->second : Picture();
    }
    std::vector<wstring> pictureNames() const override {
        const std::shared_lock guard(lock_);
        std::vector<wstring> names;
        names.reserve(pictures_.size());
        for (const auto& [name, picture] : pictures_)
            names.push_back(name);
        return names;
    }

  private:
    mutable std::shared_mutex lock_; // of what follows
    Style style_;
    std::map<wstring, Picture, LessNoCase> pictures_;
};

class OutputRightAccessControllerService : public IOutputRightAccessController {
  public:
    using Interfaces = InterfaceList<IOutputRightAccessController>;

    bool isAllowed(OutputRight right) const noexcept override {
        return (forbidden_.load(std::memory_order_relaxed) & bit(right)) == 0;
    }
    void setAllowed(OutputRight right, bool allowed) noexcept override {
        if (allowed)
            forbidden_.fetch_and(~bit(right), std::memory_order_relaxed);
        else
            forbidden_.fetch_or(bit(right), std::memory_order_relaxed);
    }

  private:
    static constexpr std::uint32_t bit(OutputRight right) noexcept {
        return 1U << static_cast<std::uint32_t>(right);
    }

    std::atomic<std::uint32_t> forbidden_{0};
};

constexpr GUID kLinesClass = "06ef41b4-2aea-46c3-a7a3-8125ccb64b5c"_guid;
constexpr GUID kBordersClass = "54091c34-c15d-486c-96d9-f71f15700662"_guid;
constexpr GUID kPresentationClass = "4218c680-bdf1-492b-8e12-c541ad6e4726"_guid;
constexpr GUID kRightsClass = "0864d9fb-ddf9-4462-9a6b-7bf18fd6abd5"_guid;
const SCOM_ServiceEntryInit<LinesService, &kLinesClass, &ILinesService::IID> kLinesEntry("LinesService");
const SCOM_ServiceEntryInit<BordersService, &kBordersClass, &IBordersService::IID>
    kBordersEntry("BordersService");
const SCOM_ServiceEntryInit<PresentationService, &kPresentationClass, &IPresentationService::IID>
    kPresentation("PresentationService");
const SCOM_ServiceEntryInit<OutputRightAccessControllerService, &kRightsClass,
                            &IOutputRightAccessController::IID>
    kRightsEntry("OutputRightAccessControllerService");

} // namespace

void require_output_right(OutputRight right) {
    const IOutputRightAccessController* const rights = get_service<IOutputRightAccessController>();
    if (rights == nullptr || rights->isAllowed(right))
        return;
    wstring name;
    script_enumeration(right)->value(static_cast<std::int32_t>(right)).toString(name);
    throw_error<PresentationException>(messages::kOutputNotAllowed, {name});
}

} // namespace core
