#pragma once

// Stands in for a header of qpdf that clang 14 can't compile as C++20. Nothing here uses the class;
// for the rest of qpdf's headers it is enough that there is one.
class JSON;
