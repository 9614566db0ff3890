// What the library draws with on a page: the imports behind its device, on canvas 2D. Surfaces and
// pictures are known to the library by numbers; 0 is none. Coordinates arrive in the surface's points
// with its scale, or with a transform that leads to its pixels.

import { TextMeasures, fontString, prepareText, roundsAdvances } from './text.js';

const Blend = { normal: 0, sourceIn: 1, copy: 2, clear: 3 };
const Command = { move: 0, line: 1, quad: 2, cubic: 3, close: 4 };
const caps = ['butt', 'round', 'square'];
const joins = ['miter', 'round', 'bevel'];
const largestSide = 32767;
// Pixels from which on a browser may refuse a canvas without a word.
const doubtfulArea = 1 << 24;
const layersKept = 4;
const colorsKept = 1000;
// Browsers round a font's ascent and descent to whole pixels, so they are measured large. Where advances
// are rounded, too, texts are measured and drawn large, not so large that their widths become worse.
const metricsSize = 1000;
const textSize = 300;

function makeContext(width, height) {
  const canvas = document.createElement('canvas');
  canvas.width = width;
  canvas.height = height;
  const context = canvas.getContext('2d');
  return context && prepareText(context);
}

// Browsers give the memory of a canvas back late unless it is made small.
function release(source) {
  if (source.close) return source.close();
  source.width = 0;
  source.height = 0;
}

function isUsable({ canvas: { width, height } }, context) {
  if (width * height < doubtfulArea) return true;
  context.fillRect(width - 1, height - 1, 1, 1);
  const isDrawn = context.getImageData(width - 1, height - 1, 1, 1).data[3] === 255;
  context.clearRect(width - 1, height - 1, 1, 1);
  return isDrawn;
}

// Browsers keep premultiplied colours and tell straight ones; most round to the nearest of both, Firefox
// up to the one and down to the other. What to add to a colour, in levels, so that it comes out as it
// was: before it is rounded as a straight one, and before it is cut off as a premultiplied one.
function roundingOf(context) {
  const pixel = context.createImageData(1, 1);
  pixel.data.set([128, 0, 0, 2]);
  context.putImageData(pixel, 0, 0);
  const isUp = context.getImageData(0, 0, 1, 1).data[0] > 128;
  return isUp ? { straight: -0.499, premultiplied: 0.999 } : { straight: 0, premultiplied: 0.5 };
}

// Chromium moves the edges of pictures onto whole pixels, unless they are turned.
function smoothingEdges(transform) {
  if (transform.every(Number.isInteger)) return transform;
  return transform.map((part, i) => (i < 4 && part === 0 ? 1e-9 : part));
}

// Half as many pixels in the directions asked for, each the average of those that it stands for. What is
// left over of an odd number at the end is stretched.
function halve(source, width, height, isAcross, isDown) {
  const half = (side, isHalved) => (isHalved ? side / 2 : side);
  const [w, h] = [half(width, isAcross), half(height, isDown)];
  const context = makeContext(Math.ceil(w), Math.ceil(h));
  const { canvas } = context;
  context.imageSmoothingQuality = 'low';
  context.drawImage(source, 0, 0, canvas.width, canvas.height);
  context.beginPath();
  context.rect(0, 0, Math.floor(w), Math.floor(h));
  context.clip();
  context.globalCompositeOperation = 'copy';
  context.drawImage(source, 0, 0, w, h);
  return { canvas, width: canvas.width, height: canvas.height };
}

export class Drawing {
  #heap;
  #things = new Map();
  #lastId = 0;
  #measures;
  #isTextLarge;
  #colors = new Map();
  #freeLayers = [];
  #rounding = roundingOf(makeContext(1, 1));
  // Of the next thing painted.
  #alpha = 1;
  #blend = Blend.normal;
  #smoothing = 1;
  #shadow = null;
  #pattern = null;

  constructor(heap) {
    this.#heap = heap;
    const context = makeContext(1, 1);
    this.#measures = new TextMeasures(context);
    this.#isTextLarge = roundsAdvances(context);
  }

  // ---- for the page

  // A number for a picture of the page's own: anything that drawImage takes, with its size. The
  // library releases it.
  addPicture(source, width = source.width, height = source.height) {
    return this.#add({ source, width, height, pattern: null, reduced: null });
  }

  // What drawImage takes, of a picture or a surface.
  sourceOf(id) {
    const thing = this.#things.get(id);
    return thing && (thing.source ?? thing.context.canvas);
  }

  #add(thing) {
    this.#things.set(++this.#lastId, thing);
    return this.#lastId;
  }

  // ---- for the library

  imports() {
    return {
      surface_make: (width, height, opaque) => this.#makeSurface(width, height, opaque),
      surface_picture: (id) => this.#copySurface(id),
      picture_make: (pixels, width, height) => this.#makePicture(pixels, width, height),
      picture_width: (id) => this.#things.get(id)?.width ?? 0,
      picture_height: (id) => this.#things.get(id)?.height ?? 0,
      picture_read: (id, pixels) => this.#readPicture(id, pixels),
      release: (id) => {
        release(this.sourceOf(id));
        this.#dropReduced(this.#things.get(id));
        this.#things.delete(id);
      },

      save: (id) => this.#layer(id).context.save(),
      restore: (id) => this.#layer(id).context.restore(),
      clip: (id, commands, count, points, scale) => {
        const layer = this.#layer(id);
        this.#trace(layer, commands, count, points, scale);
        layer.context.clip();
      },
      paint: (alpha, blend, smoothing) => {
        this.#alpha = alpha;
        this.#blend = blend;
        this.#smoothing = smoothing;
        this.#shadow = null;
        this.#pattern = null;
      },
      shadow: (x, y, blur, color) => {
        this.#shadow = { x, y, blur, color: this.#color(color) };
      },
      pattern: (picture, ...transform) => {
        this.#pattern = { picture: this.#things.get(picture), transform };
      },
      fill: (id, commands, count, points, scale, color) =>
        this.#paint(id, (layer, isCover) => {
          this.#setFill(layer, isCover, color);
          this.#trace(layer, commands, count, points, scale);
          layer.context.fill();
        }),
      stroke: (id, commands, count, points, scale, color, width, cap, join, ...pen) =>
        this.#paint(id, (layer, isCover) => {
          layer.context.strokeStyle = isCover ? '#000' : this.#color(color);
          this.#setPen(layer.context, width, cap, join);
          this.#trace(layer, commands, count, points, scale);
          layer.context.setTransform(...pen, 0, 0);
          layer.context.stroke();
        }),
      // The transform leads from the source's pixels.
      draw: (id, source, ...transform) =>
        this.#paint(id, (layer, isCover) => {
          const { context } = layer;
          const { width, height } = this.#things.get(source);
          const drawn = this.#reduced(source, transform);
          this.#transform(layer, smoothingEdges(transform));
          if (!isCover) return context.drawImage(drawn, 0, 0, width, height);
          context.fillStyle = '#000';
          context.fillRect(0, 0, width, height);
        }),
      text: (id, at, length, family, familyLength, size, style, color, width, join, ...transform) => {
        const text = this.#text(at, length);
        const set = this.#setSize(size);
        const font = this.#font(family, familyLength, set, style);
        for (let i = 0; i < 4; ++i) transform[i] *= size / set;
        this.#paint(id, (layer, isCover) => {
          const { context } = layer;
          context.font = font;
          this.#transform(layer, transform);
          if (width > 0) {
            context.strokeStyle = isCover ? '#000' : this.#color(color);
            this.#setPen(context, (width * set) / size, 0, join);
            context.strokeText(text, 0, 0);
          } else {
            this.#setFill(layer, isCover, color, transform);
            context.fillText(text, 0, 0);
          }
        });
      },
      group_begin: (id, x, y, width, height) => this.#beginGroup(id, x, y, width, height),
      group_end: (id) => this.#endGroup(id),

      advances: (at, length, family, familyLength, size, style, out) => {
        const set = this.#setSize(size);
        const font = this.#font(family, familyLength, set, style);
        const advances = this.#measures.advances(this.#text(at, length), font);
        this.#heap.doubles.set(advances.map((advance) => (advance * size) / set), out / 8);
        return advances.length;
      },
      line_metrics: (family, familyLength, size, style, out) => {
        const font = this.#font(family, familyLength, metricsSize, style);
        const metrics = this.#measures.lineMetrics(font);
        this.#heap.doubles.set(metrics.map((length) => (length * size) / metricsSize), out / 8);
      },
      boundaries: (at, length, kind, out) => {
        const places = this.#measures.boundaries(this.#heap.text(at, length), kind);
        this.#heap.words.set(places, out / 4);
        return places.length;
      },
    };
  }

  // ---- surfaces and pictures

  #makeSurface(width, height, opaque) {
    if (width > largestSide || height > largestSide) return 0;
    const context = makeContext(width, height);
    if (!context || !isUsable(context, context)) return 0;
    if (opaque) context.fillRect(0, 0, width, height);
    return this.#add({ context, opaque, width, height, layers: [{ context, x: 0, y: 0 }] });
  }

  #copySurface(id) {
    const { context, width, height } = this.#things.get(id);
    const copy = makeContext(width, height);
    if (!copy) return 0;
    copy.drawImage(context.canvas, 0, 0);
    return this.addPicture(copy.canvas);
  }

  #makePicture(pixels, width, height) {
    const context = makeContext(width, height);
    if (!context) return 0;
    const image = context.createImageData(width, height);
    const to = image.data;
    const from = this.#heap.bytes.subarray(pixels, pixels + to.length);
    const offset = this.#rounding.straight;
    for (let i = 0; i < to.length; i += 4) {
      const alpha = from[i + 3];
      const straight = alpha && 255 / alpha;
      to[i] = from[i + 2] * straight + offset;
      to[i + 1] = from[i + 1] * straight + offset;
      to[i + 2] = from[i] * straight + offset;
      to[i + 3] = alpha;
    }
    context.putImageData(image, 0, 0);
    return this.addPicture(context.canvas);
  }

  // Rows in strips, so that a photo does not need its size again and again.
  #readPicture(id, pixels) {
    const { source, width, height } = this.#things.get(id);
    const rows = Math.max(Math.floor((1 << 20) / width), 1);
    const strip = document.createElement('canvas');
    strip.width = width;
    strip.height = Math.min(rows, height);
    const context = strip.getContext('2d', { willReadFrequently: true });
    const to = this.#heap.bytes;
    const offset = this.#rounding.premultiplied;
    for (let y = 0, at = pixels; y < height; y += rows) {
      context.clearRect(0, 0, strip.width, strip.height);
      context.drawImage(source, 0, -y);
      const { data } = context.getImageData(0, 0, width, Math.min(rows, height - y));
      for (let i = 0; i < data.length; i += 4, at += 4) {
        const alpha = data[i + 3] / 255;
        to[at] = data[i + 2] * alpha + offset;
        to[at + 1] = data[i + 1] * alpha + offset;
        to[at + 2] = data[i] * alpha + offset;
        to[at + 3] = data[i + 3];
      }
    }
    release(strip);
  }

  // Not every browser averages when it shrinks, so a picture that is to be drawn at less than half its
  // size is halved beforehand, and kept like that for the next time.
  #reduced(id, [a, b, c, d]) {
    const picture = this.#things.get(id);
    if (this.#smoothing < 2 || !picture.source) return this.sourceOf(id);
    const steps = (scale, side) =>
      Math.max(Math.min(Math.floor(-Math.log2(scale) + 1e-6), Math.floor(Math.log2(side))), 0);
    const across = steps(Math.hypot(a, b), picture.width);
    const down = steps(Math.hypot(c, d), picture.height);
    if (!across && !down) return picture.source;
    if (picture.reduced?.across !== across || picture.reduced.down !== down) {
      this.#dropReduced(picture);
      let { source: canvas, width, height } = picture;
      for (let i = 0; i < Math.max(across, down); ++i) {
        const halved = halve(canvas, width, height, i < across, i < down);
        if (canvas !== picture.source) release(canvas);
        ({ canvas, width, height } = halved);
      }
      picture.reduced = { canvas, across, down };
    }
    return picture.reduced.canvas;
  }

  #dropReduced(picture) {
    if (picture.reduced) release(picture.reduced.canvas);
    picture.reduced = null;
  }

  // ---- painting

  #layer(id) {
    return this.#things.get(id).layers.at(-1);
  }

  #color(rgba) {
    let text = this.#colors.get(rgba);
    if (text === undefined) {
      if (this.#colors.size >= colorsKept) this.#colors.clear();
      text = `#${(rgba >>> 0).toString(16).padStart(8, '0')}`;
      this.#colors.set(rgba, text);
    }
    return text;
  }

  // The zero character, which browsers do not draw, shows as what is no text.
  #text(at, length) {
    return this.#heap.text(at, length).replaceAll('\0', '\ufffd');
  }

  #font(family, familyLength, size, style) {
    return fontString(this.#heap.text(family, familyLength), size, style & 1, style & 2);
  }

  // In which a text of this size is measured and drawn.
  #setSize(size) {
    return this.#isTextLarge ? textSize : size;
  }

  #setPen(context, width, cap, join) {
    context.lineWidth = width;
    context.lineCap = caps[cap];
    context.lineJoin = joins[join];
  }

  #transform({ context, x, y }, [a, b, c, d, tx, ty]) {
    context.setTransform(a, b, c, d, tx - x, ty - y);
  }

  // Leaves the path in pixels of the layer, and no transform in force.
  #trace({ context, x, y }, commands, count, points, scale) {
    const { bytes, doubles } = this.#heap;
    let at = points / 8;
    context.setTransform(1, 0, 0, 1, 0, 0);
    context.beginPath();
    for (let i = commands; i < commands + count; ++i) {
      const px = doubles[at] * scale - x;
      const py = doubles[at + 1] * scale - y;
      switch (bytes[i]) {
        case Command.move:
          context.moveTo(px, py);
          at += 2;
          break;
        case Command.line:
          context.lineTo(px, py);
          at += 2;
          break;
        case Command.quad:
          context.quadraticCurveTo(px, py, doubles[at + 2] * scale - x, doubles[at + 3] * scale - y);
          at += 4;
          break;
        case Command.cubic:
          context.bezierCurveTo(px, py, doubles[at + 2] * scale - x, doubles[at + 3] * scale - y,
            doubles[at + 4] * scale - x, doubles[at + 5] * scale - y);
          at += 6;
          break;
        case Command.close:
          context.closePath();
          break;
      }
    }
  }

  // `toPixels` is the transform that will be in force at the fill: a pattern goes through it, too.
  #setFill({ context, x, y }, isCover, color, toPixels = null) {
    if (isCover || !this.#pattern) {
      context.fillStyle = isCover ? '#000' : this.#color(color);
      return;
    }
    const { picture, transform: [a, b, c, d, tx, ty] } = this.#pattern;
    const matrix = new DOMMatrix([a, b, c, d, tx - x, ty - y]);
    if (toPixels) {
      const [e, f, g, h, ux, uy] = toPixels;
      matrix.preMultiplySelf(new DOMMatrix([e, f, g, h, ux - x, uy - y]).invertSelf());
    }
    picture.pattern ??= context.createPattern(picture.source, 'repeat');
    picture.pattern.setTransform(matrix);
    context.fillStyle = picture.pattern;
  }

  // Calls the painter with the state that the blend mode asks for. The canvas's own modes of that
  // kind act on all that the clip lets through, not on the painted shape alone, so they are put
  // together from steps that do: where the shape covers a pixel by half, half of the old paint goes
  // and half of the new one is added.
  #paint(id, painter) {
    const surface = this.#things.get(id);
    const layer = surface.layers.at(-1);
    const { context } = layer;
    context.imageSmoothingEnabled = this.#smoothing > 0;
    const cover = (mode) => {
      context.globalAlpha = 1;
      context.globalCompositeOperation = mode;
      painter(layer, true);
    };
    const isOpaque = surface.opaque && surface.layers.length === 1;
    switch (this.#blend) {
      case Blend.normal:
        this.#paintOver(layer, painter);
        return;
      case Blend.clear:
        cover(isOpaque ? 'source-over' : 'destination-out');
        break;
      case Blend.sourceIn:
        if (!isOpaque) {
          this.#paintWithin(layer, painter, cover);
          break;
        }
      // An opaque surface lets all of the new paint in.
      // falls through
      case Blend.copy:
        cover(isOpaque ? 'source-over' : 'destination-out');
        context.globalAlpha = this.#alpha;
        context.globalCompositeOperation = isOpaque ? 'source-over' : 'lighter';
        painter(layer, false);
        break;
    }
    context.globalCompositeOperation = 'source-over';
  }

  #paintOver(layer, painter) {
    const { context } = layer;
    context.globalAlpha = this.#alpha;
    if (!this.#shadow) return painter(layer, false);
    const { x, y, blur, color } = this.#shadow;
    // A canvas takes a shadow that is neither moved nor blurred for none.
    context.shadowOffsetX = x || y || blur ? x : 1e-3;
    context.shadowOffsetY = y;
    context.shadowBlur = blur;
    context.shadowColor = color;
    painter(layer, false);
    context.shadowColor = 'transparent';
  }

  #paintWithin(layer, painter, cover) {
    const { canvas } = layer.context;
    const within = this.#takeLayer(layer.x, layer.y, canvas.width, canvas.height);
    within.context.drawImage(canvas, 0, 0);
    within.context.globalAlpha = this.#alpha;
    within.context.globalCompositeOperation = 'source-in';
    painter(within, false);
    cover('destination-out');
    layer.context.setTransform(1, 0, 0, 1, 0, 0);
    layer.context.globalCompositeOperation = 'lighter';
    layer.context.drawImage(within.context.canvas, 0, 0);
    this.#giveLayer(within);
  }

  // ---- groups

  // A cleared layer at least as large as asked for, its pixel (x, y) at the origin.
  #takeLayer(x, y, width, height) {
    const fits = ({ canvas }) => canvas.width >= width && canvas.height >= height &&
      canvas.width * canvas.height <= 4 * width * height;
    const at = this.#freeLayers.findIndex(fits);
    const context = at < 0 ? makeContext(width, height) : this.#freeLayers.splice(at, 1)[0];
    context.save();
    context.clearRect(0, 0, context.canvas.width, context.canvas.height);
    return { context, x, y };
  }

  #giveLayer({ context }) {
    context.restore();
    this.#freeLayers.push(context);
    if (this.#freeLayers.length > layersKept) release(this.#freeLayers.shift().canvas);
  }

  #beginGroup(id, x, y, width, height) {
    const layer = this.#takeLayer(x, y, Math.max(width, 1), Math.max(height, 1));
    layer.context.beginPath();
    layer.context.rect(0, 0, width, height);
    layer.context.clip();
    this.#things.get(id).layers.push(layer);
  }

  #endGroup(id) {
    const group = this.#things.get(id).layers.pop();
    const { canvas } = group.context;
    this.#paint(id, (layer, isCover) => {
      const { context } = layer;
      context.setTransform(1, 0, 0, 1, group.x - layer.x, group.y - layer.y);
      if (!isCover) return context.drawImage(canvas, 0, 0);
      context.fillStyle = '#000';
      context.fillRect(0, 0, canvas.width, canvas.height);
    });
    this.#giveLayer(group);
  }
}
