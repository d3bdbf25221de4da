#pragma once

class QLineEdit;

/// What the fields to search in have in common.
namespace VxSearch {
/// Gives a field the magnifying glass and a button to clear it, both with names to hear.
void dress(QLineEdit *field);
} // namespace VxSearch
