// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/events/event.h>
#include <core/runtime/internal_class.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <vector>

/// Two worlds in which the same happens by the same dice: one with the library's event, one with the slow and
/// obvious event below. What they write into their logs must be the same.
namespace emission {

/// The rules as a list: those connected before an emission and not yet removed are called, in order.
class PlainEvent {
  public:
    using Handler = std::function<void(int)>;
    using Handle = std::size_t;

    Handle connect(Handler handler) {
        sinks_->push_back({std::move(handler), true});
        return sinks_->size() - 1;
    }
    bool disconnect(Handle handle) { return std::exchange(sinks_->at(handle).connected, false); }
    void raise(int argument) {
        const auto sinks = sinks_; // the event may end meanwhile
        const std::size_t count = sinks->size();
        for (std::size_t i = 0; i < count; ++i) {
            if (!sinks->at(i).connected)
                continue;
            try {
                const Handler handler = sinks->at(i).handler; // the list may grow meanwhile
                handler(argument);
            } catch (const std::runtime_error&) {
            }
        }
    }
    [[nodiscard]] std::size_t count() const {
        return static_cast<std::size_t>(
            std::count_if(sinks_->begin(), sinks_->end(), [](const Sink& sink) { return sink.connected; }));
    }
    ~PlainEvent() {
        for (Sink& sink : *sinks_)
            sink.connected = false;
    }

  private:
    struct Sink {
        Handler handler;
        bool connected;
    };
    std::shared_ptr<std::vector<Sink>> sinks_ = std::make_shared<std::vector<Sink>>();
};

/// The library's event behind the same face. Connections are held in all the ways that there are.
class RealEvent {
  public:
    using Handler = std::function<void(int)>;
    using Handle = std::size_t;

    Handle connect(Handler handler) {
        const Handle handle = connections_.size();
        core::Connection made = [&] {
            if (handle % 3 == 0) // three words on the heap; a pointer in the slot; through values
                return event_.connect(std::move(handler));
            if (handle % 3 == 1)
                return event_.connect([kept = keep(std::move(handler))](int argument) { (*kept)(argument); });
            const auto sink = core::make_object<ValueSink>(std::move(handler));
            return event_.connectSink(sink.get());
        }();
        const core::ConnectionNumber number = made.number();
        if (handle % 2 == 0)
            static_cast<void>(made.release());
        connections_.push_back({number, std::move(made)});
        return handle;
    }
    bool disconnect(Handle handle) {
        auto& [number, held] = connections_.at(handle);
        if (held.number() == core::kNoConnection)
            return event_.disconnectSink(number);
        const bool was = held.isConnected();
        held.disconnect();
        return was;
    }
    void raise(int argument) {
        if (argument % 2 == 0) {
            event_.raise(argument);
        } else {
            const core::GenericValue value(argument);
            event_.raiseValues(std::span(&value, 1));
        }
    }
    [[nodiscard]] std::size_t count() const { return event_.connectionCount(); }

    /// Frees what small callables point to, which no event owns. Called when no event is there.
    static void forget() { kept_.clear(); }

  private:
    class ValueSink : public core::IEventSink {
      public:
        using Interfaces = core::InterfaceList<core::IEventSink>;
        explicit ValueSink(Handler handler) : handler_(std::move(handler)) {}
        void handle(std::span<const core::GenericValue> arguments) override {
            handler_(core::from_value<int>(arguments[0]));
        }

      private:
        Handler handler_;
    };

    const Handler* keep(Handler handler) {
        return kept_.emplace_back(std::make_unique<Handler>(std::move(handler))).get();
    }

    inline static std::vector<std::unique_ptr<Handler>> kept_;
    core::Event<int> event_{core::named<u"Rolled", u"Бросок">};
    std::vector<std::pair<core::ConnectionNumber, core::Connection>> connections_;
};

/// One world: an event that comes and goes, and sinks whose handlers throw dice for what they do.
template <class E>
class World {
  public:
    explicit World(std::uint32_t seed) : dice_(seed) {}

    /// Does one random thing and returns what has happened meanwhile, call by call.
    std::vector<std::uint64_t> step() {
        log_.clear();
        act();
        log_.push_back(event_ != nullptr ? event_->count() : 0);
        if constexpr (requires { E::forget(); }) {
            if (event_ == nullptr)
                E::forget();
        }
        return std::move(log_);
    }

  private:
    std::uint32_t roll(std::uint32_t below) { return static_cast<std::uint32_t>(dice_() % below); }

    void act() {
        if (event_ == nullptr) {
            event_ = std::make_shared<E>();
            handles_.clear();
        }
        switch (roll(16)) {
        case 0:
        case 1:
        case 2:
        case 3:
        case 4:
            connect();
            break;
        case 5:
        case 6:
        case 7:
        case 8:
            disconnect();
            break;
        case 9:
            if (roll(8) == 0)
                event_.reset();
            break;
        default:
            if (depth_ < 4 && budget() > 0)
                raise();
        }
    }
    void connect() {
        if (event_->count() >= 12)
            return;
        const std::uint64_t name = ++sinks_;
        handles_.push_back(event_->connect([this, name](int argument) { handle(name, argument); }));
    }
    void disconnect() {
        if (handles_.empty())
            return;
        const std::size_t which = roll(static_cast<std::uint32_t>(handles_.size()));
        log_.push_back(event_->disconnect(handles_[which]) ? 1 : 0);
        if (roll(2) == 0)
            handles_.erase(handles_.begin() + static_cast<std::ptrdiff_t>(which));
    }
    void raise() {
        const int argument = static_cast<int>(roll(100));
        const auto source = event_.get(); // the emission must outlive its source by itself
        ++depth_;
        source->raise(argument);
        --depth_;
    }
    void handle(std::uint64_t name, int argument) {
        log_.push_back(name << 8 | static_cast<std::uint64_t>(argument));
        while (roll(3) == 0)
            act();
        if (roll(10) == 0)
            throw std::runtime_error("a sink that fails");
    }
    /// How many calls one step may still make.
    [[nodiscard]] std::size_t budget() const { return 400 - std::min<std::size_t>(400, log_.size()); }

    std::mt19937 dice_;
    std::shared_ptr<E> event_;
    std::vector<typename E::Handle> handles_;
    std::vector<std::uint64_t> log_;
    std::uint64_t sinks_ = 0;
    int depth_ = 0;
};

} // namespace emission
