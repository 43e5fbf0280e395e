package vesk.hardware.veskdevicemanager;

/** The board's product record: identity texts and switches. */
@VintfStability
parcelable ProductInfo {
    String text01;
    /** The product's model number, in decimal. */
    String modelId;
    String text03;
    String text04;
    String text05;
    String text06;
    String text07;
    String text08;
    String text09;
    String text10;
    String text11;
    String text12;
    String text13;
    String text14;
    String text15;
    String text16;
    String text17;
    String text18;
    String text19;
    String text20;
    String text21;
    boolean flag1;
    boolean flag2;
    boolean flag3;
    /** Whether the network is configured by DHCP. */
    boolean useDHCP;
}
