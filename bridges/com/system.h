// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Whether the automation system is there.
namespace core::com {

/// Says that the system has loaded this library or program, so that its functions can be called.
void system_is_here() noexcept;
/// Returns once the calling thread has an apartment. Throws COMException (COM_NO_SYSTEM) in a program that is
/// not one of the system: calling it would end the program.
void require_system();

} // namespace core::com
