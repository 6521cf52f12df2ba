#include "RichTextTypes.h"

#include "CodeView.h"
#include "MarkdownDocument.h"
#include "OwnImageProvider.h"

#include <QQmlEngine>

namespace Kestro {

void registerRichTextTypes()
{
    qmlRegisterType<MarkdownDocument>("Kestro", 1, 0, "MarkdownDocument");
    static CodeView codeView;
    qmlRegisterSingletonInstance("Kestro", 1, 0, "CodeView", &codeView);
}

void addRichTextImageProviders(QQmlEngine& engine)
{
    engine.addImageProvider(QStringLiteral("own"), new OwnImageProvider);
}

} // namespace Kestro
