// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Values and tables in the forms of others: CSV, JSON, Markdown, HTML, text in columns.
#include <core/exchange/column_text.h>
#include <core/exchange/csv.h>
#include <core/exchange/errors.h>
#include <core/exchange/json.h>
#include <core/exchange/json_reader.h>
#include <core/exchange/json_text.h>
#include <core/exchange/table_text.h>
#include <core/exchange/table_view.h>
#include <core/exchange/whole_file.h>
#include <core/files/errors.h>
