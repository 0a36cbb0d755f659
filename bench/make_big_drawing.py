#!/usr/bin/env python3
"""Writes a big, valid planting plan (version AC1024, UTF-8) for measurements of speed and memory.

    make_big_drawing.py OUT.dxf [--inserts 1000000] [--blocks 60] [--polylines 100000] [--texts 20000] [--seed 1]
                                [--attribs 0] [--parts 0]

Plant blocks have Chinese names (香樟, 桂花, …). Their references are spread over 17 layers with different scales and
rotations; the beds are closed polylines with bulges; the texts are plant labels. Every record has its handle, owner and
class marks, and tables, block records, both layouts and the root dictionary are there, so that any program that checks a
drawing accepts it. The same arguments always give the same bytes. The number of references of each block goes to
OUT.dxf.truth.json. Only the standard library is used.
"""
import argparse, json, math, random
NAMES = '香樟 桂花 银杏 广玉兰 榉树 朴树 乌桕 无患子 栾树 悬铃木 水杉 池杉 落羽杉 雪松 黑松 罗汉松 白皮松 紫薇 紫荆 樱花 垂丝海棠 西府海棠 碧桃 红梅 蜡梅 石榴 木槿 鸡爪槭 红枫 三角枫 ' \
        '枇杷 杨梅 柿树 合欢 国槐 垂柳 女贞 杜英 含笑 山茶 茶梅 杜鹃 红叶石楠 海桐 金边黄杨 瓜子黄杨 大叶黄杨 金森女贞 红花檵木 南天竹 八角金盘 洒金桃叶珊瑚 火棘 栀子 六月雪 金丝桃 绣球 棣棠 连翘 迎春'.split()

def main():
    ap = argparse.ArgumentParser(); ap.add_argument('out')
    for k, d in (('inserts', 1000000), ('blocks', 60), ('polylines', 100000), ('texts', 20000), ('seed', 1), ('attribs', 0), ('parts', 0)):
        ap.add_argument('--' + k, type=int, default=d)
    a = ap.parse_args(); rnd = random.Random(a.seed)
    names = [NAMES[i] if i < len(NAMES) else '%s-%d' % (NAMES[i % len(NAMES)], i // len(NAMES) + 1) for i in range(a.blocks)]
    layers = ['0'] + ['绿化-乔木-%02d' % i for i in range(1, 11)] + ['绿化-灌木-%02d' % i for i in range(1, 8)] + ['绿化-地被', '绿化-标注']
    H = [0x10]
    def h(): H[0] += 1; return '%X' % H[0]
    f = open(a.out, 'w', encoding='utf-8', newline='\n', buffering=1 << 20)
    def w(*t): f.write(''.join('%3d\n%s\n' % (t[i], t[i + 1]) for i in range(0, len(t), 2)))
    # fixed handles, known before the entities
    root = 'C'; H[0] = 0x100
    tabs = {n: h() for n in 'VPORT LTYPE LAYER STYLE VIEW UCS APPID DIMSTYLE BLOCK_RECORD'.split()}
    MS, PS = h(), h(); br = [h() for _ in names]; dlay, dgrp = h(), h(); lms, lps = h(), h()
    total = 200 + 20 * a.blocks + a.inserts * (1 + 2 * (a.attribs > 0)) + a.polylines + a.texts + H[0]
    w(0, 'SECTION', 2, 'HEADER', 9, '$ACADVER', 1, 'AC1024', 9, '$DWGCODEPAGE', 3, 'ANSI_936', 9, '$HANDSEED', 5, '%X' % (total + 4096),
      9, '$INSUNITS', 70, 4, 9, '$MEASUREMENT', 70, 1, 9, '$LTSCALE', 40, '1.0', 9, '$CLAYER', 8, '0', 0, 'ENDSEC', 0, 'SECTION', 2, 'CLASSES', 0, 'ENDSEC', 0, 'SECTION', 2, 'TABLES')
    def head(n, k): w(0, 'TABLE', 2, n, 5, tabs[n], 330, 0, 100, 'AcDbSymbolTable', 70, k)
    def rec(n, cls, name, *t): w(0, n, 105 if n == 'DIMSTYLE' else 5, h(), 330, tabs[n], 100, 'AcDbSymbolTableRecord', 100, cls, 2, name, *t)
    head('VPORT', 1)
    rec('VPORT', 'AcDbViewportTableRecord', '*Active', 70, 0, 10, '0.0', 20, '0.0', 11, '1.0', 21, '1.0', 12, '500000.0', 22, '500000.0', 13, '0.0', 23, '0.0', 14, '10.0', 24, '10.0',
        15, '10.0', 25, '10.0', 16, '0.0', 26, '0.0', 36, '1.0', 17, '0.0', 27, '0.0', 37, '0.0', 40, '1000000.0', 41, '1.5', 42, '50.0', 43, '0.0', 44, '0.0', 50, '0.0', 51, '0.0', 71, 0, 72, 1000, 73, 1, 74, 3, 75, 0, 76, 0, 77, 0, 78, 0)
    w(0, 'ENDTAB'); head('LTYPE', 3)
    for n in ('ByBlock', 'ByLayer', 'Continuous'): rec('LTYPE', 'AcDbLinetypeTableRecord', n, 70, 0, 3, '', 72, 65, 73, 0, 40, '0.0')
    w(0, 'ENDTAB'); head('LAYER', len(layers))
    for i, n in enumerate(layers): rec('LAYER', 'AcDbLayerTableRecord', n, 70, 0, 62, i % 7 + 1, 6, 'Continuous', 370, -3, 390, 'F')
    w(0, 'ENDTAB'); head('STYLE', 2)
    for n, fn in (('Standard', 'txt'), ('宋体', 'simsun.ttc')): rec('STYLE', 'AcDbTextStyleTableRecord', n, 70, 0, 40, '0.0', 41, '1.0', 50, '0.0', 71, 0, 42, '2.5', 3, fn, 4, '')
    w(0, 'ENDTAB'); head('VIEW', 0); w(0, 'ENDTAB'); head('UCS', 0); w(0, 'ENDTAB'); head('APPID', 1); rec('APPID', 'AcDbRegAppTableRecord', 'ACAD', 70, 0)
    w(0, 'ENDTAB', 0, 'TABLE', 2, 'DIMSTYLE', 5, tabs['DIMSTYLE'], 330, 0, 100, 'AcDbSymbolTable', 70, 1, 100, 'AcDbDimStyleTable', 71, 1)
    rec('DIMSTYLE', 'AcDbDimStyleTableRecord', 'Standard', 70, 0)
    w(0, 'ENDTAB'); head('BLOCK_RECORD', 2 + a.blocks)
    for n, x, l in [('*Model_Space', MS, lms), ('*Paper_Space', PS, lps)] + [(n, x, 0) for n, x in zip(names, br)]:
        w(0, 'BLOCK_RECORD', 5, x, 330, tabs['BLOCK_RECORD'], 100, 'AcDbSymbolTableRecord', 100, 'AcDbBlockTableRecord', 2, n, 340, l, 70, 4, 280, 1, 281, 0)
    w(0, 'ENDTAB', 0, 'ENDSEC', 0, 'SECTION', 2, 'BLOCKS')
    def block(n, x, ents):
        w(0, 'BLOCK', 5, h(), 330, x, 100, 'AcDbEntity', 8, '0', 100, 'AcDbBlockBegin', 2, n, 70, 2 if a.attribs and not n.startswith('*') else 0, 10, '0.0', 20, '0.0', 30, '0.0', 3, n, 1, '')
        for t in ents: w(0, t[0], 5, h(), 330, x, 100, 'AcDbEntity', 8, '0', 62, 0, *t[1:])
        w(0, 'ENDBLK', 5, h(), 330, x, 100, 'AcDbEntity', 8, '0', 100, 'AcDbBlockEnd')
    block('*Model_Space', MS, []); block('*Paper_Space', PS, [])
    for i, (n, x) in enumerate(zip(names, br)):
        ents = [('CIRCLE', 100, 'AcDbCircle', 10, '0.0', 20, '0.0', 30, '0.0', 40, '1.0')]
        spokes = a.parts - 1 if a.parts else 5 + i % 8
        for k in range(spokes):
            t = 2 * math.pi * k / spokes
            ents.append(('LINE', 100, 'AcDbLine', 10, '0.0', 20, '0.0', 30, '0.0', 11, '%.9f' % math.cos(t), 21, '%.9f' % math.sin(t), 31, '0.0'))
        if a.attribs: ents.append(('ATTDEF', 100, 'AcDbText', 10, '0.0', 20, '0.0', 30, '0.0', 40, '0.2', 1, '', 100, 'AcDbAttributeDefinition', 3, '编号', 2, 'NO', 70, 0))
        block(n, x, ents)
    w(0, 'ENDSEC', 0, 'SECTION', 2, 'ENTITIES')
    truth = dict.fromkeys(names, 0); S = 1000000.0; out = []
    wt = [1.0 / (i + 3) for i in range(a.blocks)]; picks = rnd.choices(range(a.blocks), wt, k=a.inserts) if a.blocks else []
    R, U = rnd.random, rnd.uniform
    for n, b in enumerate(picks):
        truth[names[b]] += 1; x, y, s, r = R() * S, R() * S, U(500, 4000), R() * 360
        me = h(); lay = layers[1 + b % 17]
        out.append('  0\nINSERT\n  5\n%s\n330\n%s\n100\nAcDbEntity\n  8\n%s\n100\nAcDbBlockReference\n%s  2\n%s\n 10\n%.6f\n 20\n%.6f\n 30\n0.0\n 41\n%.4f\n 42\n%.4f\n 43\n%.4f\n 50\n%.4f\n'
                   % (me, MS, lay, ' 66\n1\n' if a.attribs else '', names[b], x, y, s, s, s, r))
        if a.attribs:
            out.append('  0\nATTRIB\n  5\n%s\n330\n%s\n100\nAcDbEntity\n  8\n%s\n100\nAcDbText\n 10\n%.6f\n 20\n%.6f\n 30\n0.0\n 40\n200.0\n  1\n%d\n100\nAcDbAttribute\n  2\nNO\n 70\n0\n  0\nSEQEND\n  5\n%s\n330\n%s\n100\nAcDbEntity\n  8\n%s\n' % (h(), me, lay, x, y, n, h(), me, lay))
        if len(out) > 4000: f.write(''.join(out)); out.clear()
    for n in range(a.polylines):
        k = rnd.randint(4, 12); cx, cy, rr = R() * S, R() * S, U(1000, 8000)
        out.append('  0\nLWPOLYLINE\n  5\n%s\n330\n%s\n100\nAcDbEntity\n  8\n绿化-地被\n100\nAcDbPolyline\n 90\n%d\n 70\n1\n 43\n0.0\n' % (h(), MS, k))
        for i in range(k):
            t = 2 * math.pi * i / k; q = rr * U(.6, 1)
            out.append(' 10\n%.6f\n 20\n%.6f\n' % (cx + q * math.cos(t), cy + q * math.sin(t)))
            if R() < .5: out.append(' 42\n%.6f\n' % U(-.5, .5))
        if len(out) > 4000: f.write(''.join(out)); out.clear()
    for n in range(a.texts):
        b = rnd.randrange(a.blocks) if a.blocks else 0
        out.append('  0\nTEXT\n  5\n%s\n330\n%s\n100\nAcDbEntity\n  8\n绿化-标注\n100\nAcDbText\n 10\n%.6f\n 20\n%.6f\n 30\n0.0\n 40\n300.0\n  1\n%s %d株\n  7\n宋体\n100\nAcDbText\n' % (h(), MS, R() * S, R() * S, names[b] if names else '树', rnd.randint(1, 99)))
        if len(out) > 4000: f.write(''.join(out)); out.clear()
    f.write(''.join(out))
    w(0, 'ENDSEC', 0, 'SECTION', 2, 'OBJECTS', 0, 'DICTIONARY', 5, root, 330, 0, 100, 'AcDbDictionary', 281, 1, 3, 'ACAD_GROUP', 350, dgrp, 3, 'ACAD_LAYOUT', 350, dlay)
    w(0, 'DICTIONARY', 5, dgrp, 330, root, 100, 'AcDbDictionary', 281, 1)
    w(0, 'DICTIONARY', 5, dlay, 330, root, 100, 'AcDbDictionary', 281, 1, 3, 'Model', 350, lms, 3, '布局1', 350, lps)
    for x, n, o, b, fl in ((lms, 'Model', 0, MS, 1712), (lps, '布局1', 1, PS, 688)):
        w(0, 'LAYOUT', 5, x, 330, dlay, 100, 'AcDbPlotSettings', 1, '', 2, '', 4, '', 6, '', 40, '0.0', 41, '0.0', 42, '0.0', 43, '0.0', 44, '0.0', 45, '0.0', 46, '0.0', 47, '0.0', 48, '0.0', 49, '0.0', 140, '0.0', 141, '0.0', 142, '1.0', 143, '1.0',
          70, fl, 72, 0, 73, 0, 74, 5, 7, '', 75, 16, 147, '1.0', 76, 0, 77, 2, 78, 300, 148, '0.0', 149, '0.0', 100, 'AcDbLayout', 1, n, 70, 1, 71, o, 10, '0.0', 20, '0.0', 11, '420.0', 21, '297.0', 12, '0.0', 22, '0.0', 32, '0.0',
          14, '0.0', 24, '0.0', 34, '0.0', 15, '0.0', 25, '0.0', 35, '0.0', 146, '0.0', 13, '0.0', 23, '0.0', 33, '0.0', 16, '1.0', 26, '0.0', 36, '0.0', 17, '0.0', 27, '1.0', 37, '0.0', 76, 0, 330, b)
    w(0, 'ENDSEC', 0, 'EOF'); f.close()
    assert H[0] < total + 4096
    json.dump(dict(inserts=a.inserts, polylines=a.polylines, texts=a.texts, by_block=truth), open(a.out + '.truth.json', 'w'), ensure_ascii=False, indent=0)

if __name__ == '__main__': main()
