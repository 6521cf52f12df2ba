#include "RichTextTypes.h"

#include "CodeView.h"
#include "MarkdownDocument.h"

#include <QQmlEngine>

namespace Kestro {

void registerRichTextTypes()
{
    qmlRegisterType<MarkdownDocument>("Kestro", 1, 0, "MarkdownDocument");
    static CodeView codeView;
    qmlRegisterSingletonInstance("Kestro", 1, 0, "CodeView", &codeView);
}

} // namespace Kestro
