// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Texts that are edited: lines, steps that are taken back, marks, searching, files of any encoding.
#include <core/documents/document_file.h>
#include <core/documents/errors.h>
#include <core/documents/text_change.h>
#include <core/documents/text_document.h>
#include <core/documents/text_manager.h>
#include <core/documents/text_mark.h>
#include <core/documents/text_range.h>
#include <core/documents/text_search.h>
#include <core/documents/text_snapshot.h>
#include <core/files/errors.h>
