// The host's commands, each a procedure that asks and does. What they are called stands in host_commands.cpp.
#pragma once

namespace hand {

// draw_lines.cpp
void line();
void polyline();
// draw_circles.cpp
void circle();
void arc();
// draw_texts.cpp
void text();
void multilineText();
// insert.cpp
void insert();
// edit.cpp
void erase();
void copy();
void move();
void rotate();
void scale();
void mirror();
// offset.cpp
void offset();
// explode.cpp
void explode();
// boundary.cpp
void boundary();
// layers.cpp
void layers();
// views.cpp
void zoom();
void pan();
void regenerate();
// coordinate_systems.cpp
void coordinateSystem();
// inquiry.cpp
void list();
void distance();
void area();
void variable();
void objectSnapModes();
// purge.cpp
void purge();
// files.cpp
void newDrawing();
void openDrawing();
void saveDrawing();
void saveDrawingAs();
void quit();
void script();

} // namespace hand
