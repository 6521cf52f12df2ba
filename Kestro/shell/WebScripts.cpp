#include "WebScripts.h"

#include <QFile>
#include <QRegularExpression>

namespace Kestro::WebScripts {

namespace {

// Shade and mode names are fixed words; anything else is refused so that a
// hand-edited setting cannot inject script text.
QString word(const QString& value)
{
    static const QRegularExpression plain(QStringLiteral("^[a-z]+$"));
    return plain.match(value).hasMatch() ? value : QString();
}

} // namespace

QString storage(const QString& mode, const QString& darkShade, const QString& lightShade)
{
    return QStringLiteral("try{localStorage.setItem(\"theme\",\"") + word(mode) +
           QStringLiteral("\");localStorage.setItem(\"kestro:dark-shade\",\"") + word(darkShade) +
           QStringLiteral("\");localStorage.setItem(\"kestro:light-shade\",\"") + word(lightShade) +
           QStringLiteral("\")}catch(e){}");
}

QString theme(bool dark, const QString& mode, const QString& darkShade, const QString& lightShade)
{
    const QString yes = QStringLiteral("true");
    const QString no = QStringLiteral("false");
    return storage(mode, darkShade, lightShade) +
           QStringLiteral(";var d=document.documentElement;d.classList.toggle(\"dark\",") +
           (dark ? yes : no) + QStringLiteral(");d.classList.toggle(\"light\",") + (dark ? no : yes) +
           QStringLiteral(");d.dataset.shade=\"") + word(darkShade) +
           QStringLiteral("\";d.dataset.lightShade=\"") + word(lightShade) +
           QStringLiteral("\";d.style.colorScheme=\"") +
           (dark ? QStringLiteral("dark") : QStringLiteral("light")) + QStringLiteral("\";");
}

QString bridge()
{
    return QStringLiteral(R"JS((function(){
if (window.__kestro) return;
window.__kestro = true;
function post(message) {
  try { document.dispatchEvent(new CustomEvent("kestro:post", {detail: JSON.stringify(message)})); } catch (e) {}
}
function title() { return String(document.title).replace(/ [\u00b7|-] Kestro$/, ""); }
function here() { return location.pathname + location.search + location.hash; }
document.addEventListener("DOMContentLoaded", function () {
  var style = document.createElement("style");
  style.textContent = "[data-theme-switch]{display:none!important}";
  (document.head || document.documentElement).appendChild(style);
  post({kind: "title", title: title()});
  var element = document.querySelector("title");
  if (element)
    new MutationObserver(function () { post({kind: "title", title: title()}); })
      .observe(element, {childList: true, characterData: true, subtree: true});
});
document.addEventListener("click", function (event) {
  if (event.defaultPrevented || event.button !== 0) return;
  if (event.metaKey || event.ctrlKey || event.shiftKey || event.altKey) return;
  var link = event.target && event.target.closest ? event.target.closest("a[href]") : null;
  if (!link || link.target === "_blank" || link.hasAttribute("download")) return;
  var url;
  try { url = new URL(link.getAttribute("href"), location.href); } catch (e) { return; }
  if (url.origin !== location.origin || url.pathname === location.pathname) return;
  event.preventDefault();
  event.stopPropagation();
  post({kind: "open", path: url.pathname + url.search + url.hash});
}, true);
window.addEventListener("kestro:changed", function () { post({kind: "changed"}); });
var push = history.pushState;
history.pushState = function () {
  var before = location.pathname;
  var result = push.apply(this, arguments);
  if (location.pathname !== before) post({kind: "open", path: here()});
  return result;
};
})();)JS");
}

QString relay()
{
    QFile channel(QStringLiteral(":/qtwebchannel/qwebchannel.js"));
    QString library;
    if (channel.open(QIODevice::ReadOnly))
        library = QString::fromUtf8(channel.readAll());
    return library + QStringLiteral(R"JS(
(function(){
var bridge = null, waiting = [];
document.addEventListener("kestro:post", function (event) {
  if (typeof event.detail !== "string") return;
  if (bridge) bridge.post(event.detail); else waiting.push(event.detail);
});
try {
  new QWebChannel(qt.webChannelTransport, function (channel) {
    bridge = channel.objects.kestro;
    waiting.forEach(function (text) { bridge.post(text); });
    waiting = [];
  });
} catch (e) {}
})();)JS");
}

QString sessionCookieName(const QUrl& origin)
{
    return origin.scheme() == QLatin1String("https") ? QStringLiteral("__Host-kestro_app_token")
                                                     : QStringLiteral("kestro_app_token");
}

QString pageTitle(const QString& title)
{
    static const QRegularExpression suffix(QStringLiteral(" [\\x{00b7}|-] Kestro$"));
    QString out = title;
    out.remove(suffix);
    return out;
}

} // namespace Kestro::WebScripts
