#pragma once

/// Opens the user's guide in the browser; a box tells where none is installed.
void ShowGuide();
