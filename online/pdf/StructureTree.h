#pragma once

#include <vector>

class QPDF;
class QPDFObjectHandle;

/// The order in which a tagged PDF is read aloud, by ISO 32000-1, 14.7.
namespace StructureTree {
/// The annotations that the tree refers to, in its order; none where there is no tree.
[[nodiscard]] std::vector<QPDFObjectHandle> annotations(QPDF &pdf);
} // namespace StructureTree
