// SPDX-License-Identifier: MIT
// What fronts with a drawer do alike: how a reader begins by the options, follows what the drawer finds out, and tells its
// view in the words of the options.
#pragma once

#include "Drawer.h"
#include "Options.h"
#include "Reader.h"

namespace Viewer {

// The reader shows the document that the drawer has opened, as the options say. Throws Gxr::Error for a page that the
// document does not have.
void Begin(Reader& reader, const Options& options, const Drawer::Status& status);
// Takes over the size of the page, once it is known; where the options say where, places the view.
void TakeSize(Reader& reader, const Options& options, const Drawer::Status& status, bool& placed);
// Options that show this view again: "--page 2 --zoom 1.25 --at 30,40 --size 900x700".
std::string Describe(const Reader& reader);

// The picture of a window without one: until everything in sight is drawn. Throws Gxr::Error.
void Shoot(const Options& options, Drawer::Open open);

} // namespace Viewer
