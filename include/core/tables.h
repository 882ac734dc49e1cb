// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Value tables, value trees and value lists.
#include <core/lists/errors.h>
#include <core/tables/aggregates.h>
#include <core/tables/cell.h>
#include <core/tables/chooser.h>
#include <core/tables/columns.h>
#include <core/tables/compare_values.h>
#include <core/tables/errors.h>
#include <core/tables/expression.h>
#include <core/tables/filter.h>
#include <core/tables/joins.h>
#include <core/tables/list.h>
#include <core/tables/losses.h>
#include <core/tables/row.h>
#include <core/tables/sets.h>
#include <core/tables/structures.h>
#include <core/tables/table.h>
#include <core/tables/table_work.h>
#include <core/tables/terms.h>
#include <core/tables/tree.h>
#include <core/tables/trees.h>
#include <core/tables/value_columns.h>
#include <core/tables/value_list.h>
#include <core/tables/value_table.h>
#include <core/tables/value_tree.h>
#include <core/tables/windows.h>
