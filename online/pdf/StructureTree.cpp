#include "StructureTree.h"

#include "QpdfFile.h"

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include <set>

std::vector<QPDFObjectHandle> StructureTree::annotations(QPDF &pdf)
{
    std::vector<QPDFObjectHandle> found;
    std::set<QPDFObjGen> seen; // a damaged tree may have itself as a branch
    std::vector<QPDFObjectHandle> waiting{entryOf(pdf.getRoot(), "/StructTreeRoot")};
    while (!waiting.empty()) {
        QPDFObjectHandle node = waiting.back();
        waiting.pop_back();
        if (node.isIndirect() && !seen.insert(node.getObjGen()).second) {
            continue;
        }
        if (node.isArray()) {
            const std::vector<QPDFObjectHandle> kids = node.getArrayAsVector();
            waiting.insert(waiting.end(), kids.rbegin(), kids.rend());
        } else if (node.isDictionary() && node.hasKey("/K")) {
            waiting.push_back(node.getKey("/K"));
        } else if (entryOf(node, "/Obj").isIndirect()) {
            found.push_back(node.getKey("/Obj"));
        }
    }
    return found;
}
