// The four voices, as far as oscillators can follow them: square waves and noise.

const clock = 1_773_447; // Hz, of a PAL machine
const baseDivisor = 28;
const lineDivisor = 114;
const loudest = 0.12; // of one voice

// Places of the registers.
const audctl = 8;
const isByLine = 0x01, joins12 = 0x10, joins34 = 0x08, isFast1 = 0x40, isFast3 = 0x20;
const volumeOnly = 0x10, isPure = 0x20, withoutShortNoise = 0x80;

interface Voice {
  tone: OscillatorNode;
  toneVolume: GainNode;
  noise: AudioBufferSourceNode;
  noiseVolume: GainNode;
}

// In Hz, of voice 0 to 3 when it makes a square wave.
export function frequencyOf(registers: Uint8Array, voice: number): number {
  const at = (index: number): number => registers[index] ?? 0;
  const control = at(audctl);
  const isJoined = voice === 1 ? (control & joins12) !== 0 : voice === 3 && (control & joins34) !== 0;
  const isFast = voice < 2 ? (control & isFast1) !== 0 : (control & isFast3) !== 0;
  const runsFast = isFast && (isJoined || voice % 2 === 0);
  const count = isJoined ? at(voice * 2) * 256 + at(voice * 2 - 2) : at(voice * 2);
  if (runsFast) return clock / (2 * (count + (isJoined ? 7 : 4)));
  return clock / ((control & isByLine) !== 0 ? lineDivisor : baseDivisor) / (2 * (count + 1));
}

export class Sound {
  private context: AudioContext | null = null;
  private voices: Voice[] = [];

  // Browsers allow sound only after a key or a click; to be called then.
  start(): void {
    if (this.context === null) {
      if (typeof AudioContext === "undefined") return;
      this.context = new AudioContext();
      const noise = this.makeNoise(this.context);
      for (let i = 0; i < 4; ++i) this.voices.push(this.makeVoice(this.context, noise));
    }
    void this.context.resume().catch(() => undefined);
  }

  silence(): void {
    this.play(new Uint8Array(audctl + 1));
  }

  // Brings the voices up to date; once a frame.
  play(registers: Uint8Array): void {
    const context = this.context;
    if (context === null) return;
    const control = registers[audctl] ?? 0;
    this.voices.forEach((voice, i) => {
      const isTaken = (i === 0 && (control & joins12) !== 0) || (i === 2 && (control & joins34) !== 0);
      this.set(context, voice, isTaken ? 0 : (registers[i * 2 + 1] ?? 0), frequencyOf(registers, i));
    });
  }

  private set(context: AudioContext, voice: Voice, shape: number, frequency: number): void {
    const isAudible = (shape & volumeOnly) === 0 && frequency < context.sampleRate / 2;
    const volume = isAudible ? ((shape & 15) / 15) * loudest : 0;
    const isTone = (shape & isPure) !== 0;
    const now = context.currentTime;
    voice.toneVolume.gain.setTargetAtTime(isTone ? volume : 0, now, 0.002);
    voice.noiseVolume.gain.setTargetAtTime(isTone ? 0 : volume, now, 0.002);
    if (volume === 0) return;
    voice.tone.frequency.setValueAtTime(frequency, now);
    const rate = (2 * frequency * ((shape & withoutShortNoise) !== 0 ? 1 : 0.5)) / context.sampleRate;
    voice.noise.playbackRate.setValueAtTime(Math.min(rate, 1), now);
  }

  private makeNoise(context: AudioContext): AudioBuffer {
    const buffer = context.createBuffer(1, 1 << 16, context.sampleRate);
    const samples = buffer.getChannelData(0);
    for (let i = 0, bits = 1; i < samples.length; ++i) {
      bits = (bits >> 1) ^ (-(bits & 1) & 0x12000); // 17 bits, as the chip has them
      samples[i] = (bits & 1) * 2 - 1;
    }
    return buffer;
  }

  private makeVoice(context: AudioContext, noiseBuffer: AudioBuffer): Voice {
    const tone = new OscillatorNode(context, {type: "square"});
    const noise = new AudioBufferSourceNode(context, {buffer: noiseBuffer, loop: true});
    const toneVolume = new GainNode(context, {gain: 0});
    const noiseVolume = new GainNode(context, {gain: 0});
    tone.connect(toneVolume).connect(context.destination);
    noise.connect(noiseVolume).connect(context.destination);
    tone.start();
    noise.start();
    return {tone, toneVolume, noise, noiseVolume};
  }
}
