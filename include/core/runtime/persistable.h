// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/exception.h>

#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

/// Objects that write themselves and are made again from what they wrote, and where they write to. The
/// storages themselves stand in the layer persistence.
namespace core {

class ListInStream;
class ListOutStream;
class Nesting;

/// One datum of a failure beside its description and cause.
using FailureField = std::variant<std::int32_t, wstring, GUID>;

/// What a storage reads of a failure beside its data.
struct StoredFailure {
    wstring description;                  ///< the message
    std::string messageId;                ///< what the message was made from; empty if nothing was written
    std::vector<wstring> parameters;      ///< what the message was filled in with
    InterfacePtr<IExceptionObject> cause; ///< the failure behind it; null if none exists
};

/// Where objects are written. The storage belongs to its maker and is not counted.
class IOutPersistenceStorage : public IUnknown {
  public:
    /// The interface id.
    static constexpr GUID IID = "93cce00b-3354-4e59-9d8a-84fad33895c7"_guid;

    /// Returns the brace list that bodies are written to, borrowed: valid as long as the storage.
    [[nodiscard]] virtual ListOutStream& listStream() noexcept = 0;
    /// Returns how deep the body being written stands in other bodies, borrowed: valid as long as the
    /// storage.
    [[nodiscard]] virtual Nesting& nesting() noexcept = 0;
    /// Writes the body of a failure: the description, `fields` in their order, the null id and the message id
    /// with its parameters when there is one, then the class id and the body of the cause when it is a
    /// persistable object. Throws what the carrier throws, also when causes stand in causes too deeply.
    virtual void putFailure(const Exception& failure, std::span<const FailureField> fields) = 0;

  protected:
    ~IOutPersistenceStorage() = default;
};

/// Where objects are read from. The storage belongs to its maker and is not counted.
class IInPersistenceStorage : public IUnknown {
  public:
    /// The interface id.
    static constexpr GUID IID = "4a6e728e-2bbf-4b8a-8471-9600cf11e759"_guid;

    /// Returns the brace list that bodies are read from, borrowed: valid as long as the storage.
    [[nodiscard]] virtual ListInStream& listStream() noexcept = 0;
    /// Returns how deep the body being read stands in other bodies, borrowed: valid as long as the storage.
    [[nodiscard]] virtual Nesting& nesting() noexcept = 0;
    /// Reads what putFailure() wrote, with a message id or, as older versions did, without. Each of `fields`
    /// is read as the type that it holds already. A cause of a class that the current process does not make
    /// ends the chain. Throws what the carrier throws for anything else than such a body; `fields` are then
    /// partly read.
    [[nodiscard]] virtual StoredFailure getFailure(std::span<FailureField> fields) = 0;

  protected:
    ~IInPersistenceStorage() = default;
};

/// An object that can be written and made again from what was written. Its class id, which the writer of the
/// enclosing data puts in front, tells the reader what to make.
class IPersistableObject : public IUnknown {
  public:
    /// The interface id.
    static constexpr GUID IID = "fe2559b1-730d-4e62-81d8-79c04fbfe236"_guid;

    /// Returns the class id under which such an object is made, borrowed: valid for the whole program.
    [[nodiscard]] virtual const GUID& getCLSID() const noexcept = 0;
    /// Writes the object's body, one element of a list, to `storage`. Throws what the storage throws.
    virtual void serialize(IOutPersistenceStorage* storage) const = 0;
    /// Takes the state from a body. Throws what the carrier throws for a malformed one; the object is then
    /// unchanged.
    virtual void deserialize(IInPersistenceStorage* storage) = 0;

  protected:
    ~IPersistableObject() = default;
};

/// Implements the class id of a persistable object. `Object` is the class itself.
template <class Object, const GUID* clsid>
class IPersistableObjectImpl : public IPersistableObject {
  public:
    const GUID& getCLSID() const noexcept override { return *clsid; }

  protected:
    ~IPersistableObjectImpl() = default;
};

} // namespace core
