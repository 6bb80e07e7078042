#include "Editor/LayerListRules.h"

#include <algorithm>

std::vector<LayerRow> LayerListRules::rows(std::span<const EditorAnnotation> annotations) {
    std::vector<LayerRow> result;
    result.reserve(annotations.size());
    for (std::size_t i = annotations.size(); i > 0; --i)
        result.push_back({annotations[i - 1].id, annotations[i - 1].tool, annotations[i - 1].text});
    return result;
}

bool LayerListRules::differ(std::span<const LayerRow> rows, std::span<const EditorAnnotation> annotations) {
    const auto same = [](const LayerRow& row, const EditorAnnotation& annotation) {
        return row.id == annotation.id && row.tool == annotation.tool && row.text == annotation.text;
    };
    return !std::equal(rows.begin(), rows.end(), annotations.rbegin(), annotations.rend(), same);
}

QString LayerListRules::label(const LayerRow& row) {
    if (row.tool != AnnotationTool::text)
        return AnnotationTools::title(row.tool);
    // Nobody reads more than the beginning, and the end would only cost time.
    constexpr qsizetype longest = 200;
    QString text = row.text.left(longest);
    return QStringLiteral("Text: ") + text.replace(QLatin1Char('\n'), QLatin1Char(' '));
}

int LayerListRules::insertion(double y, double pitch, int rowCount) {
    if (y < 0 || pitch <= 0)
        return 0;
    const double position = y / pitch;
    if (position >= rowCount)
        return rowCount;
    const double row = std::floor(position);
    return static_cast<int>(row) + (position - row >= 0.5 ? 1 : 0);
}

std::optional<int> LayerListRules::annotationIndex(int from, int insertion, int rowCount) {
    if (from < 0 || from >= rowCount)
        return std::nullopt;
    const int target = std::clamp(from < insertion ? insertion - 1 : insertion, 0, rowCount - 1);
    if (target == from)
        return std::nullopt;
    return rowCount - 1 - target;
}

double LayerListRules::autoScroll(double y, double height) {
    constexpr double edge = 10;
    constexpr double fastest = 24;
    if (y < edge)
        return std::max((y - edge) * 0.5, -fastest);
    if (y > height - edge)
        return std::min((y - (height - edge)) * 0.5, fastest);
    return 0;
}
