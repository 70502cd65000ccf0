#ifndef KVL_SHELL_EXPORT_GRAPH_H
#define KVL_SHELL_EXPORT_GRAPH_H

#include <functional>
#include <string>
#include <vector>

#include "KVLShellModel.h"

/// The conversions as an SVG element: the types to convert from in a column on the left, those to
/// convert to on the right, ordered so that few lines cross. `targetOf` gives the place in the page
/// that describes a type, such as "#types", or nothing. Empty when there are no conversions.
std::string KVLShellExportGraph(
    const std::vector<KVLShellModelConversion>& conversions,
    const std::function<std::string(const std::string& typeName)>& targetOf);

#endif
