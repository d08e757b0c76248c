"""Text for messages that tries to make a browser contact a server, or to change the page that
`zqv report` writes. @/ stands for the server."""

import base64

from report_pages import DOT

# HTML that contacts a server as soon as it is shown.
LOADING = {
    "picture": "<img src='@/1'>",
    "picture in a set": "<img srcset='@/1 1x, @/2 2x'>",
    "picture of a button": "<input type=image src='@/1'>",
    "background": "<table background='@/1'><tr><td>x</td></tr></table>",
    "style": "<p style='background: url(@/1)'>x</p>",
    "style sheet with a picture": "<style>body { background: url('@/1') }</style>",
    "style sheet with another": "<style>@import url('@/1');</style>",
    "style sheet with another, escaped": "<style>@\\69mport '@/1';</style>",
    "style with escapes": "<p style='background: \\75rl(@/1)'>x</p>",
    "style with references": "<p style='background: &bsol;75&#x20;rl&lpar;@/1&rpar;'>x</p>",
    "style with a comment": "<p style='background:/**/url(/**/@/1)'>x</p>"
                            "<p style='background:/**/url(@/2)/**/'>x</p>",
    "style with a set of pictures": "<p style='background: image-set(\"@/1\" 1x)'>x</p>",
    "style with an old set": "<p style='background: -webkit-image-set(url(@/1) 1x)'>x</p>",
    "style with a variable": "<style>p { --a: url(@/1); background: var(--a) }</style><p>x</p>",
    "style with a picture for text": "<p style='content: url(@/1)'>x</p>",
    "style with a shape": "<p style='float: left; shape-outside: url(@/1)'>x</p>",
    "style with a mask": "<p style='mask-image: url(@/1)'>x</p>",
    "style with a border": "<p style='border: 1px solid; border-image: url(@/1) 1'>x</p>",
    "style of a list": "<ul><li style='list-style: url(@/1)'>x</li></ul>",
    "style for the page around": "<style>:root { background: url(@/1) }</style>",
    "style in a query": "<style>@media screen { p { background: url(@/1) } }</style><p>x</p>",
    "nested style": "<style>body { p { background: url(@/1) } }</style><p>x</p>",
    "style of text before": "<style>p::before { content: url(@/1) }</style><p>x</p>",
    "style sheet elsewhere": "<link rel=stylesheet href='@/1'>",
    "font": "<style>@font-face { font-family: f; src: url('@/1') } p { font-family: f }</style>"
            "<p>x</p>",
    "script elsewhere": "<script src='@/1'></script>",
    "script": "<script>document.title = 'taken'; new Image().src = '@/1'</script>",
    "handler": "<img src='data:,' onerror=\"this.onerror = null; document.title = 'taken'; "
               "this.src = '@/1'\">",
    "handler of an SVG": "<svg onload=\"document.title = 'taken'; fetch('@/1')\"></svg>",
    "picture in an SVG": "<svg><image href='@/1' width=9 height=9></image></svg>",
    "frame": "<iframe src='@/1'></iframe>",
    "frame in a frame": "<iframe srcdoc=\"<img src='@/1'>\"></iframe>",
    "object": "<object data='@/1'></object>",
    "embedded": "<embed src='@/1'>",
    "film": "<video poster='@/1' src='@/2' autoplay></video>",
    "refresh": "<meta http-equiv=refresh content='0; url=@/1'>",
    "base": "<base href='@/'><img src='1'>",
    "preload": "<link rel=preload as=image href='@/1'>",
    "connection": "<link rel=preconnect href='@/'>",
    "script from a link": "<a href=\"javascript:fetch('@/1')\" id=self>x</a>"
                          "<script>document.getElementById('self').click()</script>",
    "form": "<form id=f action='@/1'><input name=a></form><script>f.submit()</script>",
    "attribute that ends early": "<p title='\"><img src=@/1>'></p><p title='x'><img src='@/1'></p>",
    "comment that ends early": "<!--><img src='@/1'>-->",
    "raw text that ends": "<textarea></textarea><img src='@/1'>",
}

# Text that leaves its place in a page that does not escape it: it must not end an attribute or an
# element.
BREAKING = """\
"><img src='@/1'><script>document.title = 'taken'</script>
'><svg/onload="document.title = 'taken'">
"></iframe><script src='@/1'></script><img src=@/2>
&quot;&gt;&lt;img src=@/1&gt;&#34;&#62;
<scr\0ipt src='@/1'></scr\0ipt><im\0g src='@/1'><\0script>document.title = 'taken'</script>
<style>p { }</st\0yle><img src='@/1'></style>
<style>@import '@/1'</style ><img/src="@/1"/onerror=x><IMG SRC=@/1><img src
='@/1'><img src=@/1
"""

# HTML that contacts a server when it is clicked.
WAITING = """\
<a href="@/1" target=_top>top</a> <a href='@/2'>self</a> <a href=@/3 target=_blank ping=@/4>new</a>
<form action='@/5' method=post target=_top><input type=submit value=send><button>b</button></form>
<map name=m><area href='@/6' shape=default></map><img usemap=#m src='data:image/gif;base64,%s'>
<details ontoggle="document.title = 'taken'"><summary>more</summary></details>
""" % base64.b64encode(DOT).decode()

EVERYWHERE = "</title></pre></style>\"'><script>document.title='taken'</script><img src=@/9>\u202E"
