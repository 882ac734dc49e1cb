// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Reports: tables in a style, on terminals and as pages.
#include <core/exchange/errors.h>
#include <core/files/errors.h>
#include <core/lists/errors.h>
#include <core/presentation/errors.h>
#include <core/reports/report.h>
#include <core/reports/report_style.h>
#include <core/tables/errors.h>
#include <core/tables/expression_errors.h>
