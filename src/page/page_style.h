#pragma once

#include "page/html.h"

namespace corvane {

/// How the page looks: on a wide screen, on a telephone, on paper, in the dark.
///
/// States and days differ by sign or pattern too, so that colours are never needed. The numbers of the classes are
/// those of `UnitState` ("s") and `DayGrade` ("d").
inline constexpr Markup kPageStyle = R"(<style>
:root{color-scheme:light dark;--ink:#1c2127;--soft:#56606b;--paper:#fff;--line:#ccd3da;--band:#f2f5f7;--link:#0b5c8a;
--fine:#0b5c8a;--trouble:#805300;--late:#974000;--silent:#a1123c;--new:#59439b;--whole:#9ccbe6;--most:#f4d27a;--part:#ee9a45;
--none:#a1123c;--mark:#2a1500;--cross:#fff}
@media (prefers-color-scheme:dark){:root{--ink:#e6eaee;--soft:#a5afb9;--paper:#14181c;--line:#3a444e;--band:#1e252b;
--link:#84c8ee;--fine:#84c8ee;--trouble:#f0c264;--late:#f4a266;--silent:#ff93ad;--new:#b9a8f4;--whole:#2d6c90;--most:#b58a25;
--part:#e07f25;--none:#ff93ad;--mark:#140a00;--cross:#4a0018}}
*{box-sizing:border-box}
body{font:16px/1.45 system-ui,sans-serif;color:var(--ink);background:var(--paper);margin:0 auto;padding:1rem;max-width:80rem}
h1{font-size:1.5rem;margin:0 0 .3rem}h2{font-size:1.2rem;margin:2rem 0 .5rem}h3{font-size:1.05rem;margin:0}
a{color:var(--link)}p{margin:.3rem 0}small,.soft{color:var(--soft);font-size:.85em}
.how{font-size:1.15rem;border-left:.4rem solid var(--fine);padding:.2rem 0 .2rem .7rem}
.n1,.n2{border-color:var(--silent)}.n3{border-color:var(--trouble)}
.counts{list-style:none;display:flex;flex-wrap:wrap;gap:.3rem 1.2rem;padding:0;margin:.6rem 0}
.s0,.s0 b{color:var(--soft)}.s1 b{color:var(--new)}.s2 b{color:var(--silent)}.s3 b{color:var(--late)}.s4 b{color:var(--trouble)}
.s5 b{color:var(--fine)}
table{border-collapse:collapse;width:100%;font-size:.92rem}
th,td{text-align:left;vertical-align:top;padding:.35rem .6rem .35rem 0;border-bottom:1px solid var(--line)}
thead th{color:var(--soft);font-weight:600;font-size:.9em}tbody th{font-weight:600}
td small,th small{display:block;font-weight:400}.units td:first-child,.units td:nth-child(4) small{white-space:nowrap}
.gaps{table-layout:fixed}.gaps th:first-child{width:14rem}
svg{display:block;max-width:100%}.bars{width:5rem;height:.8rem}.bars path{fill:none;stroke:var(--fine);stroke-width:10;stroke-dasharray:1.2 .8}.bars .x{stroke:var(--silent);stroke-width:2}
.map{width:100%;max-width:48rem;height:auto;background:var(--band)}
.d1{fill:var(--whole)}.d2{fill:url(#p2)}.d3{fill:url(#p3)}.d4{fill:url(#p4)}.d5{fill:none;stroke:var(--soft);stroke-width:.12;stroke-dasharray:.4 .4}
pattern path{stroke:var(--mark);fill:none;stroke-width:.25}#p4 path{stroke:var(--cross)}
.key{list-style:none;display:flex;flex-wrap:wrap;gap:.2rem 1rem;padding:0;font-size:.85rem}.key svg{display:inline-block;width:1.5rem;
height:.8rem;vertical-align:-.1rem;background:var(--band)}
.unit{border-left:.3rem solid var(--line);padding:.2rem 0 .2rem .8rem;margin:1rem 0;break-inside:avoid}
.unit ul{margin:.2rem 0;padding-left:1.2rem}.charts{display:flex;flex-wrap:wrap;gap:.3rem 1.5rem}
figure{margin:.3rem 0;flex:1 1 16rem;max-width:28rem}figcaption{color:var(--soft);font-size:.85rem}
figure svg{width:100%;height:2.6rem;background:var(--band)}figure path{fill:none;stroke:var(--link);stroke-width:1.5;vector-effect:non-scaling-stroke}
.days{display:flex;justify-content:space-between;max-width:48rem}
@media screen and (max-width:52rem){
thead{position:absolute;clip-path:inset(50%);height:1px;overflow:hidden}
table,tbody,tr,th,td{display:block}tr{border-bottom:1px solid var(--line);padding:.5rem 0}th,td{border:0;padding:.05rem 0}
td:empty{display:none}.units td:not(:first-child){display:grid;grid-template-columns:8.5rem 1fr}
.units td>*{grid-column:2}.bars{align-self:center}.units td:empty:not(:first-child){display:none}
.gaps th:first-child{width:auto}.units td::before{color:var(--soft)}
.units td:nth-child(3)::before{content:"Client"}.units td:nth-child(4)::before{content:"Last reading"}
.units td:nth-child(5)::before{content:"Last contact"}.units td:nth-child(6)::before{content:"Answered"}
.units td:nth-child(7)::before{content:"Battery"}.units td:nth-child(8)::before{content:"Complete"}
.units td:nth-child(9)::before{content:"Missing"}.units td:nth-child(10)::before{content:"Delivered"}}
@media print{:root{color-scheme:light;--ink:#000;--soft:#333;--paper:#fff;--line:#999;--band:#fff;--link:#000;--fine:#0b5c8a;
--trouble:#805300;--late:#974000;--silent:#a1123c;--new:#59439b;--whole:#9ccbe6;--most:#f4d27a;--part:#ee9a45;--none:#a1123c;--mark:#2a1500;
--cross:#fff}body{font-size:10pt;padding:0;max-width:none;print-color-adjust:exact;-webkit-print-color-adjust:exact}
a{text-decoration:none}table{font-size:8pt}th,td{padding:.2rem .3rem .2rem 0}.bars{width:3.2rem}tr{break-inside:avoid}h2,h3,h2+p{break-after:avoid}thead{display:table-header-group}
.map,figure svg{border:1px solid var(--line)}}
</style>
)";

}  // namespace corvane
