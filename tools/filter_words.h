// What the filters are called and said to do, for those who look for one by a word. The library itself knows names only.
#pragma once

#include <cstdint>

#include "lmf16filter.h"

namespace lmf {

struct FilterWords {
    int32_t row;
    const char *description; ///< one line: what the filter does to a picture
    const char *synonyms;    ///< other names that find it, separated by ';'; each belongs to one filter alone
};

inline constexpr FilterWords kFilterWords[] = {
    {LMF_FILTER_ADD_ALPHA, "Makes the whole picture transparent, or what a mask picture says", "alpha;opacity;transparency"},
    {LMF_FILTER_ADD_NOISE, "Lays random grain over the picture", "noise;grain;gaussian noise"},
    {LMF_FILTER_ALPHA_SHADOW, "Lets what stands out of the transparency cast a shadow", "drop shadow"},
    {LMF_FILTER_AVERAGE, "Blurs a little: the mean of 3 x 3 or 5 x 5 pixels", "mean;box blur;smooth"},
    {LMF_FILTER_BAYER_DITHER, "Shows shades with few colors in a regular pattern of dots", "ordered dither;dither"},
    {LMF_FILTER_BIG_SCREEN, "Shows the picture on a wall of round lamps", "lamps;led wall"},
    {LMF_FILTER_BLACK_THRESHOLD, "Makes everything darker than a level black", "shadow clip"},
    {LMF_FILTER_BUMP, "Shows the picture as a grey relief", "bump map"},
    {LMF_FILTER_CANVAS, "Prints the picture on a texture: cloth, plaster, paper", "texture"},
    {LMF_FILTER_CAPTION, "Writes a caption on a strip below the picture", "title;annotate"},
    {LMF_FILTER_CHANNELS, "Swaps red, green and blue, or copies one over another", "swap channels;channel mixer"},
    {LMF_FILTER_COLOR_AND_INTENSITY, "Adds or takes away red, green, blue and light", "color balance;rgb"},
    {LMF_FILTER_CONTRAST_AND_BRIGHTNESS, "Changes contrast and brightness", "contrast;brightness;brightness and contrast"},
    {LMF_FILTER_CONVERT_TO_256_COLORS, "Turns the picture into one with a palette of 256 colors", "palette;indexed;quantize"},
    {LMF_FILTER_CONVERT_TO_GREY, "Takes the colors away: 256 shades of grey",
     "grayscale;greyscale;gray;grey;convert to gray;desaturate;black and white"},
    {LMF_FILTER_CONVERT_TO_MONO, "Leaves black and white alone, by dithering or at a threshold",
     "mono;monochrome;threshold;bitonal;bilevel"},
    {LMF_FILTER_CONVERT_TO_RGB, "Turns any picture into true color", "rgb 24;true color;truecolor"},
    {LMF_FILTER_CORNERS, "Rounds the corners off", "round corners;rounded corners"},
    {LMF_FILTER_CROP, "Cuts out a rectangle", "cut;clip"},
    {LMF_FILTER_DESPECKLE, "Removes specks, and softens a little", "remove specks"},
    {LMF_FILTER_EDGE_TRACE_AND_FATTEN, "Outlines or thickens the shapes of a black and white picture",
     "edge trace;fatten;dilate"},
    {LMF_FILTER_EMBOSS, "Shows the picture as a relief in grey", "relief"},
    {LMF_FILTER_EDGE_ENHANCEMENT, "Sets every pixel off from its neighbours: coarse sharpening", "edge enhance"},
    {LMF_FILTER_EQUALIZE, "Darkens dark tones and lightens light ones; clips highlights", "levels"},
    {LMF_FILTER_EXPLODE, "Draws together what lies about a point (it pinches)", "pinch"},
    {LMF_FILTER_FACE_DETECTION, "Frames, masks, blurs or cuts out faces", "faces;face detect"},
    {LMF_FILTER_FADE, "Lets one edge fade into the paper color", "fade out"},
    {LMF_FILTER_FILM_GRAIN, "Gives the picture the grain of film; fine with Blur=40 Strength=30", "film;analog"},
    {LMF_FILTER_FLIP, "Mirrors the picture", "mirror;flop"},
    {LMF_FILTER_FRAME, "Puts a bevelled frame around the picture", "picture frame"},
    {LMF_FILTER_GAMMA, "Lightens or darkens the middle tones; above 1.00 is darker", "gamma correction"},
    {LMF_FILTER_GAUSSIAN_BLUR, "Blurs softly and evenly", "blur;gauss;soften"},
    {LMF_FILTER_GLASS_BLOCK, "Looks through a wall of glass bricks", "glass bricks;glass"},
    {LMF_FILTER_HALFTONE, "Screens the picture in the four inks of print", "print screen"},
    {LMF_FILTER_HEXAGON, "Lays the picture as a honeycomb of tiles", "honeycomb"},
    {LMF_FILTER_HUE_SATURATION_BRIGHTNESS, "Turns hues and changes the strength of colors and light",
     "hue;saturation;hsb;hsv;hsl;modulate"},
    {LMF_FILTER_IMPACT, "Blends a blurred copy with a grey one, for a stark look", "high impact;glow;blend"},
    {LMF_FILTER_IMPLODE, "Swells the picture around a point (it bulges)", "bulge;magnify"},
    {LMF_FILTER_INVERT_CHANNELS, "Turns red, green and blue into their negatives one by one", "invert rgb"},
    {LMF_FILTER_INVERT_COLORS, "Makes a negative", "invert;negate;negative;inverse"},
    {LMF_FILTER_JIGSAW, "Cuts the picture into the pieces of a puzzle", "puzzle"},
    {LMF_FILTER_LENS_CORRECTION, "Straightens what a lens bowed outwards", "barrel;undistort;lens distortion"},
    {LMF_FILTER_LENS_FLARE, "Adds the flare of a light before the lens", "flare"},
    {LMF_FILTER_LIGHT_BOX, "Shows the picture with red, green and blue lamps", "rgb screen"},
    {LMF_FILTER_MATT, "Mounts the picture on a larger sheet of the paper color", "border;pad;extent;mount;mat"},
    {LMF_FILTER_MEDIAN, "Removes specks and keeps edges; shifts the picture up and left", "median filter"},
    {LMF_FILTER_MOONLIGHT, "Darkens the picture as if by night: grey", "night;day for night"},
    {LMF_FILTER_MOTION_BLUR, "Blurs as if the camera had moved; edges turn pale", "movement"},
    {LMF_FILTER_NEON, "Draws the outlines as glowing tubes", "glowing edges;edges;edge detect"},
    {LMF_FILTER_NORMALIZE, "Stretches the tones over the full range", "auto level;autolevel;stretch;auto contrast"},
    {LMF_FILTER_OBSCURE, "Makes a mosaic of square cells", "pixelate;pixelize;mosaic;censor"},
    {LMF_FILTER_OIL_PAINTING, "Paints the picture with broad strokes", "oil;oil paint;paint"},
    {LMF_FILTER_PAPER_CURL, "Rolls up one corner of the page", "page curl;curl"},
    {LMF_FILTER_PHOTO_FINE_TUNE, "Ten corrections in one: temperature, tint, tones, saturation, ...",
     "fine tune;adjust;color temperature;white point"},
    {LMF_FILTER_PLASTIC, "Lays the gloss of a dome of plastic over the picture", "gloss;gel"},
    {LMF_FILTER_POSITION_ONLY, "Marks the picture as a placeholder, with a cross and a label", "placeholder;fpo"},
    {LMF_FILTER_POSTERIZE, "Leaves few tones of each color", "poster;reduce tones"},
    {LMF_FILTER_PREPRESS, "Adds crop marks, color swatches and a line of information", "crop marks"},
    {LMF_FILTER_RADIAL_BLUR, "Blurs as if the picture turned; edges turn pale", "spin blur;rotational blur"},
    {LMF_FILTER_RAISE, "Bevels the edges as those of a button", "button;bevel"},
    {LMF_FILTER_RASTER, "Engraves the picture in lines of varying width", "engrave;line screen"},
    {LMF_FILTER_RED_EYE_REDUCTION, "Takes the red out of eyes", "red eye;redeye"},
    {LMF_FILTER_REDUCE_NOISE, "Smooths noise along the rows, smearing sideways", "denoise;noise reduction"},
    {LMF_FILTER_REFLECTION, "Mirrors the lower part below, as on a polished table", "reflect"},
    {LMF_FILTER_RESIZE, "Makes the picture larger or smaller", "scale;resample;thumbnail;size"},
    {LMF_FILTER_REMOVE_ALPHA, "Lays the picture on the paper color and drops its alpha", "flatten;no alpha"},
    {LMF_FILTER_RIPPLE, "Sees the picture through rings on water", "water rings;pond"},
    {LMF_FILTER_ROTATE, "Turns the picture, to the left or to the right", "turn;straighten"},
    {LMF_FILTER_ROUND, "Bevels the edge with a round profile", "round bevel"},
    {LMF_FILTER_SEAMLESS, "Makes a tile that repeats without seams", "texture tile"},
    {LMF_FILTER_SEPIA, "Tones the picture brown; turns olive where Threshold is high", "vintage;sepia tone;aged;antique"},
    {LMF_FILTER_SHADE, "Lights the picture from one side, darkly", "shading;light"},
    {LMF_FILTER_SHADOW, "Lets the whole picture cast a shadow on a larger sheet", "picture shadow"},
    {LMF_FILTER_SHAPE_MASK, "Keeps what lies in an ellipse, a diamond or another shape", "mask;ellipse;cut out"},
    {LMF_FILTER_SHARDS, "Strews splinters of flat color over the picture", "splinters;shapes"},
    {LMF_FILTER_SHARPEN, "Sharpens, harshly; works with the settings of Emboss", "sharp"},
    {LMF_FILTER_SHEAR, "Slants the picture", "skew;slant"},
    {LMF_FILTER_SIGMOIDAL_CONTRAST, "Raises contrast along a soft curve about a midpoint", "s curve;curves"},
    {LMF_FILTER_SOCIAL_MEDIA, "Fits the picture into a size for a web service", "social"},
    {LMF_FILTER_SOLARIZE, "Turns the dark half of the tones into its negative", "solarise"},
    {LMF_FILTER_SPLIT_CHANNELS, "Shows one color plane: red, cyan, black, alpha, ...", "separate;channel;extract channel"},
    {LMF_FILTER_STARS, "Puts stars of light on bright spots", "star filter;sparkle"},
    {LMF_FILTER_STITCH, "Joins another picture (--clipboard) to one side", "append;join;montage"},
    {LMF_FILTER_SWIRL, "Twists the picture about its middle", "twirl;twist;vortex"},
    {LMF_FILTER_TILE, "Fills a larger sheet with copies", "repeat;wallpaper"},
    {LMF_FILTER_TORN_EDGES, "Tears the edges as those of paper", "torn paper;ragged"},
    {LMF_FILTER_TRIM, "Takes plain borders away, or so many pixels of each side", "autocrop;auto crop;shave"},
    {LMF_FILTER_UNSHARP_MASK, "Sharpens where the picture differs from its blurred copy", "unsharp;usm"},
    {LMF_FILTER_VIGNETTE, "Lets the edges fade into the paper color in an oval", "soft edge"},
    {LMF_FILTER_WATER_DROPS, "Scatters the pixels as frosted glass does", "frosted glass;spread;scatter"},
    {LMF_FILTER_WATERMARK, "Prints a text or a picture over one corner", "copyright;logo"},
    {LMF_FILTER_WAVES, "Bends the picture in waves", "wave;sine"},
    {LMF_FILTER_WHITE_BALANCE, "Makes the brightest pixel, or the paper color, white", "wb"},
    {LMF_FILTER_WHITE_THRESHOLD, "Makes everything brighter than a level white", "highlight clip"},
    {LMF_FILTER_ZOOM_BLUR, "Blurs as if the lens zoomed; smooth with Displacement=1 Cycles=19", "zoom"},
};
static_assert([] {
    for (int32_t row = 0; row < LMF_FILTER_COUNT; row++)
        if (kFilterWords[row].row != row) return false;
    return sizeof kFilterWords / sizeof kFilterWords[0] == LMF_FILTER_COUNT;
}());

} // namespace lmf
