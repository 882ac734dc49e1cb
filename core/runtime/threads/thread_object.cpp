// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/class_entry.h>
#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/thread.h>

#include <utility>

namespace core {
namespace {

class ThreadObject : public IThread {
  public:
    using Interfaces = InterfaceList<IThread>;

    void start(const wstring& name, IRunnable* work) override {
        if (started_)
            throw_error<ThreadException>(messages::kThreadStarted, {thread_.name()});
        thread_ = Thread(name, work);
        started_ = true;
    }
    void stop() noexcept override { thread_.stop(); }
    bool join(std::chrono::milliseconds timeout) override { return thread_.join(timeout); }
    [[nodiscard]] bool finished() const noexcept override { return thread_.finished(); }
    [[nodiscard]] wstring name() const override { return thread_.name(); }
    [[nodiscard]] Waitable& waitable() noexcept override { return thread_.waitable(); }

  private:
    Thread thread_;
    bool started_ = false;
};

const SCOM_ClassEntryInit<ThreadObject, &kThreadClass> kThreadObjectEntry("Thread");

} // namespace
} // namespace core
