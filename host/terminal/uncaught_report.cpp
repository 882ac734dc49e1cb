// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/uncaught_report.h"

#include "host/terminal/error_report.h"
#include "host/terminal/terminal_text.h"

#include <core/runtime/internal_class.h>

#include <mutex>
#include <ostream>

namespace host {
namespace {

class UncaughtReport : public core::IUncaughtExceptions {
  public:
    using Interfaces = core::InterfaceList<core::IUncaughtExceptions>;

    explicit UncaughtReport(Console& console) noexcept : console_(console) {}

    void uncaught(core::IExceptionObject* failure, const core::wstring& where) override {
        const std::lock_guard guard(lock_);
        const core::Exception& exception = failure->exception();
        const auto* const error = dynamic_cast<const core::script::Error*>(&exception);
        console_.out.flush();
        if (error == nullptr)
            return show_failure(console_, where + u": " + exception.description(), exception.messageId());
        if (!console_.json)
            console_.err << "corehost: " << terminal_text(where) << ":\n";
        show_error(console_, *error);
    }

  private:
    Console& console_;
    std::mutex lock_;
};

} // namespace

core::InterfacePtr<core::IUncaughtExceptions> create_uncaught_report(Console& console) {
    return core::make_object<UncaughtReport>(console);
}

} // namespace host
