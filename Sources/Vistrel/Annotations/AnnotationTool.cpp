#include "Annotations/AnnotationTool.h"

#include <iterator>

namespace {

struct Description {
    QString title;
    QString name;
    QString symbol;
    char16_t key;
    int defaultSize;
    bool freehand;
    bool effect;
};

const Description& describe(AnnotationTool tool) {
    static const Description descriptions[] = {
        {QStringLiteral("Select"), QStringLiteral("select"), QStringLiteral("cursorarrow"), u'v', 3, false,
         false},
        {QStringLiteral("Pen"), QStringLiteral("pen"), QStringLiteral("pencil.tip"), u'p', 3, true, false},
        {QStringLiteral("Arrow"), QStringLiteral("arrow"), QStringLiteral("arrow.up.right"), u'a', 3, false,
         false},
        {QStringLiteral("Rectangle"), QStringLiteral("rectangle"), QStringLiteral("rectangle"), u'r', 3,
         false, false},
        {QStringLiteral("Marker"), QStringLiteral("marker"), QStringLiteral("highlighter"), u'h', 16, true,
         false},
        {QStringLiteral("Line"), QStringLiteral("line"), QStringLiteral("line.diagonal"), u'l', 3, false,
         false},
        {QStringLiteral("Ellipse"), QStringLiteral("ellipse"), QStringLiteral("oval"), u'e', 3, false, false},
        {QStringLiteral("Blur Marker"), QStringLiteral("blur"), QStringLiteral("drop.halffull"), u'b', 24,
         true, true},
        {QStringLiteral("Pixelate"), QStringLiteral("pixelate"), QStringLiteral("square.grid.3x3.fill"), u'x',
         12, false, true},
        {QStringLiteral("Text"), QStringLiteral("text"), QStringLiteral("textformat"), u't', 24, false,
         false},
    };
    static_assert(std::size(descriptions) == AnnotationTools::count);
    return descriptions[static_cast<std::size_t>(tool)];
}

} // namespace

QString AnnotationTools::title(AnnotationTool tool) {
    return describe(tool).title;
}

QString AnnotationTools::name(AnnotationTool tool) {
    return describe(tool).name;
}

QString AnnotationTools::symbol(AnnotationTool tool) {
    return describe(tool).symbol;
}

QChar AnnotationTools::key(AnnotationTool tool) {
    return describe(tool).key;
}

int AnnotationTools::defaultSize(AnnotationTool tool) {
    return describe(tool).defaultSize;
}

bool AnnotationTools::isFreehand(AnnotationTool tool) {
    return describe(tool).freehand;
}

bool AnnotationTools::isEffect(AnnotationTool tool) {
    return describe(tool).effect;
}
