#include "Html.h"

namespace devservice {

std::string escapeHtml(const std::string& text)
{
    std::string out;
    for (char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\'':
            out += "&#39;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::string page(const std::string& title, const std::string& body, const std::string& extraHead)
{
    return R"(<!doctype html><html lang="en"><head><meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>)" + escapeHtml(title) +
           R"( · Kestro</title>
<script>
(function(){var t='system';try{t=localStorage.getItem('theme')||'system'}catch(e){}
var dark=t==='dark'||(t==='system'&&window.matchMedia&&matchMedia('(prefers-color-scheme: dark)').matches);
var d=document.documentElement;d.classList.toggle('dark',dark);d.classList.toggle('light',!dark);
d.style.colorScheme=dark?'dark':'light';})();
</script>
<style>
:root{--bg:#f7f7f5;--fg:#1d1d1f;--muted:#6b6b70;--card:#fff;--line:#e4e4e7;--accent:#4f6bff}
html.dark{--bg:#17171a;--fg:#ececf0;--muted:#9a9aa3;--card:#222226;--line:#34343a;--accent:#8096ff}
body{margin:0;background:var(--bg);color:var(--fg);font:15px/1.5 system-ui,sans-serif}
nav{display:flex;gap:16px;padding:12px 24px;border-bottom:1px solid var(--line)}
nav a{color:var(--muted);text-decoration:none}nav a:hover{color:var(--fg)}
main{max-width:760px;margin:32px auto;padding:0 24px}
.card{background:var(--card);border:1px solid var(--line);border-radius:12px;padding:24px 28px;max-width:460px;margin:64px auto}
button{font:inherit;padding:8px 16px;border-radius:8px;border:1px solid var(--line);background:var(--card);color:var(--fg);cursor:pointer}
button.primary,a.button.primary{background:var(--accent);border-color:var(--accent);color:#fff}
a.button{display:inline-block;font:inherit;padding:8px 16px;border-radius:8px;text-decoration:none}
input{font:inherit;width:100%;box-sizing:border-box;padding:8px 10px;border-radius:8px;border:1px solid var(--line);background:var(--bg);color:var(--fg)}
label{color:var(--muted)}
table{border-collapse:collapse;width:100%}td,th{border-bottom:1px solid var(--line);padding:8px;text-align:left}
.muted{color:var(--muted)}
</style>)" +
           extraHead + "</head><body>" + body + "</body></html>";
}

} // namespace devservice
