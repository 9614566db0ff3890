// What the library draws with on a page: the imports behind its device, on canvas 2D. Surfaces and
// pictures are known to the library by numbers; 0 is none. Coordinates arrive in the surface's points
// with its scale, or with a transform that leads to its pixels.

import { LayerPool, makeContext, release, shrink } from './canvases.js';
import { tracePath } from './path.js';
import { makePicture, readPicture } from './pixels.js';
import { TextMeasures, completeTexts, fontString, roundsAdvances } from './text.js';

const Blend = { normal: 0, sourceIn: 1, copy: 2, clear: 3, multiply: 4 };
const caps = ['butt', 'round', 'square'];
const joins = ['miter', 'round', 'bevel'];
const largestSide = 32767;
const colorsKept = 1000;
const hasPictures = /\p{Emoji_Presentation}|\p{Emoji}\ufe0f/u;
// At which a pen is put around them.
const penPlaces = 24;
// Browsers round a font's ascent and descent to whole pixels, so they are measured large. Where advances
// are rounded, too, texts are measured and drawn large, not so large that their widths become worse.
const metricsSize = 1000;
const textSize = 300;

// Chromium moves the edges of pictures onto whole pixels, unless they are turned.
function smoothingEdges(transform) {
  if (transform.every(Number.isInteger)) return transform;
  return transform.map((part, i) => (i < 4 && part === 0 ? 1e-9 : part));
}

export class Drawing {
  #heap;
  #things = new Map();
  #lastId = 0;
  #measures;
  #isTextLarge;
  // Those that the page has handed over; null for none.
  #fonts = null;
  #colors = new Map();
  #pool = new LayerPool();
  // The size of the last picture or surface for which there was no room.
  #refused = null;
  // These hold for the next thing painted.
  #alpha = 1;
  #blend = Blend.normal;
  #smoothing = 1;
  #shadow = null;
  #pattern = null;

  // Called when texts have other measures than before, or with the error for which they have not.
  onTexts = null;

  constructor(heap) {
    this.#heap = heap;
    const context = makeContext(1, 1);
    this.#measures = new TextMeasures(context, (error) => {
      this.#measures.forget();
      this.onTexts?.(error);
    });
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

  // The size for which there has been no room since this was asked last, or null.
  takeRefused() {
    const refused = this.#refused;
    this.#refused = null;
    return refused;
  }

  // Whether a surface of this size can be had now.
  hasRoom(width, height) {
    const context = this.#contextOf(width, height);
    if (context) release(context.canvas);
    return context !== null;
  }

  // Gives back what is kept only to be quicker.
  dropLayers() {
    this.#pool.drop();
  }

  // Takes a font's bytes, in which texts are set from now on, before the system's fonts; the name of its family.
  // Rejects with what is wrong.
  async addFont(bytes) {
    const { Fonts } = await import('./fonts.js');
    this.#fonts ??= new Fonts();
    const family = await this.#fonts.add(bytes);
    this.#measures.forget();
    return family;
  }

  // The page's own fonts have come.
  forgetWidths() {
    this.#measures.forget();
  }

  // Has all come that is known of texts; without it they are laid out by a guess.
  completeTexts() {
    return completeTexts();
  }

  // Gives back what others of the page could meet.
  end() {
    this.dropLayers();
    this.#fonts?.drop();
  }

  #refuse(width, height) {
    this.#refused = { width, height };
    return 0;
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
      picture_make: (pixels, width, height) => {
        const canvas = makePicture(this.#heap.bytes, pixels >>> 0, width, height);
        return canvas ? this.addPicture(canvas) : this.#refuse(width, height);
      },
      picture_width: (id) => this.#things.get(id)?.width ?? 0,
      picture_height: (id) => this.#things.get(id)?.height ?? 0,
      picture_read: (id, pixels) => {
        const { source, width, height } = this.#things.get(id);
        readPicture(source, width, height, this.#heap.bytes, pixels >>> 0);
      },
      release: (id) => {
        release(this.sourceOf(id));
        this.#dropReduced(this.#things.get(id));
        this.#things.delete(id);
      },

      save: (id) => this.#layer(id).context.save(),
      restore: (id) => this.#layer(id).context.restore(),
      clip: (id, commands, count, points, scale) => {
        const layer = this.#layer(id);
        tracePath(this.#heap, layer, commands, count, points, scale);
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
          tracePath(this.#heap, layer, commands, count, points, scale);
          layer.context.fill();
        }),
      stroke: (id, commands, count, points, scale, color, width, cap, join, ...pen) =>
        this.#paint(id, (layer, isCover) => {
          layer.context.strokeStyle = isCover ? '#000' : this.#color(color);
          this.#setPen(layer.context, width, cap, join);
          tracePath(this.#heap, layer, commands, count, points, scale);
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
            if (hasPictures.test(text)) this.#outlinePictures(layer, text, transform);
            else context.strokeText(text, 0, 0);
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
        this.#heap.doubles.set(advances.map((advance) => (advance * size) / set), out >>> 3);
        return advances.length;
      },
      line_metrics: (family, familyLength, size, style, out) => {
        this.#heap.doubles.set(this.#lineMetrics(family, familyLength, style).map((part) => part * size), out >>> 3);
      },
      directions: (at, length, base, out) => {
        const directions = this.#measures.directions(this.#text(at, length), base);
        this.#heap.bytes.set(directions, out >>> 0);
        return directions.length;
      },
      boundaries: (at, length, kind, out) => {
        const places = this.#measures.boundaries(this.#text(at, length), kind);
        this.#heap.words.set(places, out >>> 2);
        return places.length;
      },
    };
  }

  // ---- surfaces and pictures

  #contextOf(width, height) {
    return width <= largestSide && height <= largestSide ? makeContext(width, height) : null;
  }

  #makeSurface(width, height, opaque) {
    const context = this.#contextOf(width, height);
    if (!context) return this.#refuse(width, height);
    if (opaque) context.fillRect(0, 0, width, height);
    return this.#add({ context, opaque, width, height, layers: [{ context, x: 0, y: 0 }] });
  }

  #copySurface(id) {
    const { context, width, height } = this.#things.get(id);
    const copy = makeContext(width, height);
    if (!copy) return this.#refuse(width, height);
    copy.drawImage(context.canvas, 0, 0);
    return this.addPicture(copy.canvas);
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
      const canvas = shrink(picture.source, picture.width, picture.height, across, down);
      if (!canvas) return picture.source;
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
    const name = this.#heap.text(family, familyLength);
    return fontString(this.#fonts?.namesFor(name) ?? (name ? [name] : []), size, style & 1, style & 2);
  }

  // Parts of a font's size.
  #lineMetrics(family, familyLength, style) {
    const name = this.#heap.text(family, familyLength);
    const added = this.#fonts?.metricsOf(name, Boolean(style & 1), Boolean(style & 2));
    if (added) return added;
    const measured = this.#measures.lineMetrics(this.#font(family, familyLength, metricsSize, style));
    return measured.map((length) => length / metricsSize);
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

  // Signs that are pictures have no outline that a canvas knows: it is what a round pen leaves around them.
  #outlinePictures(layer, text, transform) {
    const { context } = layer;
    const { font, lineWidth, lineJoin, strokeStyle } = context;
    const own = this.#pool.take(context.canvas.width, context.canvas.height);
    if (!own) return;
    Object.assign(own, { font, lineWidth, lineJoin });
    this.#transform({ ...layer, context: own }, transform);
    own.strokeText(text, 0, 0);
    for (let i = 0; i < penPlaces; ++i) {
      const angle = (2 * Math.PI * i) / penPlaces;
      own.fillText(text, (Math.cos(angle) * lineWidth) / 2, (Math.sin(angle) * lineWidth) / 2);
    }
    own.setTransform(1, 0, 0, 1, 0, 0);
    own.globalCompositeOperation = 'source-in';
    own.fillStyle = strokeStyle;
    own.fillRect(0, 0, own.canvas.width, own.canvas.height);
    context.setTransform(1, 0, 0, 1, 0, 0);
    context.drawImage(own.canvas, 0, 0);
    this.#pool.give(own);
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
      case Blend.multiply:
        context.globalAlpha = this.#alpha;
        context.globalCompositeOperation = 'multiply';
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
    const context = this.#pool.take(canvas.width, canvas.height);
    if (!context) return;
    context.drawImage(canvas, 0, 0);
    context.imageSmoothingEnabled = this.#smoothing > 0;
    context.globalAlpha = this.#alpha;
    context.globalCompositeOperation = 'source-in';
    painter({ ...layer, context }, false);
    cover('destination-out');
    layer.context.setTransform(1, 0, 0, 1, 0, 0);
    layer.context.globalCompositeOperation = 'lighter';
    layer.context.drawImage(context.canvas, 0, 0);
    this.#pool.give(context);
  }

  // ---- groups: layers above the surface's own, each with its pixel (x, y) at the origin

  // Where there is no room for a layer, what belongs to the group is painted by itself.
  #beginGroup(id, x, y, width, height) {
    const { layers } = this.#things.get(id);
    const context = this.#pool.take(Math.max(width, 1), Math.max(height, 1));
    if (!context) {
      layers.at(-1).context.save();
      layers.push({ ...layers.at(-1), isShared: true });
      return;
    }
    context.beginPath();
    context.rect(0, 0, width, height);
    context.clip();
    layers.push({ context, x, y });
  }

  #endGroup(id) {
    const group = this.#things.get(id).layers.pop();
    if (group.isShared) return group.context.restore();
    const { canvas } = group.context;
    this.#paint(id, (layer, isCover) => {
      const { context } = layer;
      context.setTransform(1, 0, 0, 1, group.x - layer.x, group.y - layer.y);
      if (!isCover) return context.drawImage(canvas, 0, 0);
      context.fillStyle = '#000';
      context.fillRect(0, 0, canvas.width, canvas.height);
    });
    this.#pool.give(group.context);
  }
}
