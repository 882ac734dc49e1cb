// SPDX-License-Identifier: Apache-2.0
#pragma once

/// How things look: colours, fonts, lines, borders, rectangles, shortcuts, pictures and styles, and the
/// services for them.
#include <core/files/errors.h>
#include <core/lists/errors.h>
#include <core/presentation/border.h>
#include <core/presentation/color.h>
#include <core/presentation/color_tables.h>
#include <core/presentation/errors.h>
#include <core/presentation/font.h>
#include <core/presentation/line.h>
#include <core/presentation/picture.h>
#include <core/presentation/picture_info.h>
#include <core/presentation/presentation_values.h>
#include <core/presentation/rect.h>
#include <core/presentation/rgba.h>
#include <core/presentation/services.h>
#include <core/presentation/short_cut.h>
#include <core/presentation/style.h>
