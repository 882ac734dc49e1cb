// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace core {

/// A connection of a sink with an event: a number that is never used again. The event that gave it
/// understands it, or the object of the event.
using ConnectionNumber = std::uint64_t;
/// The number that no connection has.
inline constexpr ConnectionNumber kNoConnection = 0;

class Connection;
class EventBase;

namespace detail {

class SinkTable;
struct EventNumber;

} // namespace detail

/// Holds a connection of a sink with an event: when it ends, the sink is disconnected. It may outlive the
/// event. Moves, does not copy.
///
/// Threads: as the object that has the event.
class CORE_API Connection {
  public:
    /// Holds no connection.
    Connection() noexcept = default;
    /// Takes over what `other` holds.
    Connection(Connection&& other) noexcept
        : table_(std::exchange(other.table_, nullptr)), number_(std::exchange(other.number_, kNoConnection)) {
    }
    /// Disconnects what it holds and takes over what `other` holds.
    Connection& operator=(Connection&& other) noexcept {
        Connection taken(std::move(other));
        std::swap(table_, taken.table_);
        std::swap(number_, taken.number_);
        return *this;
    }
    ~Connection() {
        if (table_ != nullptr)
            disconnect();
    }

    /// Disconnects the sink, which is never called again. The event lets go of it at once, or at the end of
    /// the outermost emission where one is under way. Without a connection this has no effect.
    void disconnect() noexcept;
    /// Lets the sink stay connected as long as the event lives, and returns the number of the connection.
    ConnectionNumber release() noexcept;
    /// Returns the number by which the event or its object disconnects it; kNoConnection where none is held.
    [[nodiscard]] ConnectionNumber number() const noexcept { return number_; }
    /// Returns whether the sink is connected: neither disconnected by its number nor the event gone.
    [[nodiscard]] bool isConnected() const noexcept;

  private:
    friend class EventBase;
    friend struct detail::EventNumber;
    /// Takes over a hold on the table.
    Connection(detail::SinkTable& table, ConnectionNumber number) noexcept
        : table_(&table), number_(number) {}

    detail::SinkTable* table_ = nullptr;
    ConnectionNumber number_ = kNoConnection;
};

/// Connections that end together, as a data member of an object that listens: its sinks may hold the object
/// by address, because they are disconnected before it is gone.
class CORE_API Connections {
  public:
    /// Keeps a connection; forgets those that have been disconnected, from time to time. Throws
    /// std::bad_alloc, and the connection then ends.
    void add(Connection connection);
    /// Ends all connections.
    void clear() noexcept;
    /// Returns how many connections are held, those among them that have been disconnected elsewhere.
    [[nodiscard]] std::size_t size() const noexcept { return held_.size(); }

  private:
    std::vector<Connection> held_;
};

} // namespace core
