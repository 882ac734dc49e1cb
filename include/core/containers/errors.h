// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/errors.h>
#include <core/storage/errors.h>

/// The failures of containers as objects, beside those of the storage below. All travel in a
/// ContextException.
namespace core::messages {

/// A script goes on using a container that it has closed. No parameters.
inline constexpr const char* kContainerClosed = "IDS_CONTAINER_CLOSED";
/// An inner file does not hold a value; {0} is its URL, {1} says why.
inline constexpr const char* kContainerNoValue = "IDS_CONTAINER_NO_VALUE";
/// An inner file holds a value of another type than was asked for; {0} is its URL.
inline constexpr const char* kContainerOtherValue = "IDS_CONTAINER_OTHER_VALUE";
/// A value that was kept in parts is read without its container; {0} is the name of a part.
inline constexpr const char* kPartElsewhere = "IDS_PART_ELSEWHERE";

} // namespace core::messages
